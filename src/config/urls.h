#pragma once

#include "config/layout.h"

#include <QString>
#include <QUrl>

#include <optional>

// Shortcut-run URLs address a shortcut everywhere an item is named by URL:
// shortcuts://run-shortcut?id=<identifier>.
QUrl shortcutURL(const QString &id);
// The identifier of a shortcut-run URL, or nothing for any other URL.
std::optional<QString> shortcutID(const QUrl &url);
bool isShortcutRunURL(const QUrl &url);
// A System Settings place, opened by the desktop's settings program.
bool isSettingsURL(const QUrl &url);

// The text a URL is stored as, which reads back as an equal URL.
QString urlString(const QUrl &url);

// A file URL rebuilt from its path, a trailing slash meaning a directory;
// any other URL as it is. Makes equal items compare equal.
QUrl normalizedURL(const QUrl &url);

// The file-system path of a URL, without a trailing slash, for comparing
// favourites that may be spelled differently.
QString comparablePath(const QUrl &url);

// Which group of a custom menu a URL belongs to.
MenuItemKind kindOf(const QUrl &url);
