#pragma once

#include "common/decoded.h"

#include <QByteArray>
#include <QHash>
#include <QString>

// The localized values of a desktop entry file's [Desktop Entry] group: for
// each locale that some Key[locale] line names, the keys it localizes and
// their values. Unlocalized lines are not part of any locale.
using DesktopEntryLocalizations = QHash<QString, QHash<QString, QString>>;

Decoded<DesktopEntryLocalizations> parseDesktopEntryLocalizations(const QByteArray &data);
Decoded<DesktopEntryLocalizations> readDesktopEntryLocalizations(const QString &path);
