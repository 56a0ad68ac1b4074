#pragma once

#include <QString>
#include <QUrl>

class SystemStrings;

// Titles of the built-in sources, in the desktop's own words where it has
// them.
QString applicationsTitle(SystemStrings &strings);
QString shortcutsTitle();
// A folder as file managers name it: its last path component ("/" for the
// root).
QString folderTitle(const QUrl &folder);
