#pragma once

#include "sources/appcategories.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

// One application the user should see in menus, read from its desktop entry.
struct DesktopApp {
    QString name; // the localized Name
    QUrl url;     // the desktop file
    QString icon; // a theme icon name or an absolute path; may be empty
    AppCategory category = AppCategory::Other;
    bool operator==(const DesktopApp &) const = default;
};

// Reads the desktop entries of the given applications folders, most important
// first. Each desktop file ID counts once: the most important file decides, so
// a Hidden=true copy (or one that cannot be loaded) masks lower copies. Entries
// marked NoDisplay, not meant for the current desktops or whose TryExec is
// missing are left out. Order: folder by folder, files by path.
// An unreadable folder is logged; a missing one is not.
QList<DesktopApp> readDesktopApps(const QStringList &applicationDirs, const QStringList &desktops);
