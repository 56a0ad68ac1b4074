#pragma once

#include <QStringList>

// The freedesktop data directories, most important first: the user's
// ($XDG_DATA_HOME, default ~/.local/share), then every $XDG_DATA_DIRS entry
// (default /usr/local/share and /usr/share). Read from the environment on each
// call so a rescan sees changes. Relative entries are invalid and ignored.
QStringList xdgDataDirs();

// The desktops named by $XDG_CURRENT_DESKTOP, in order.
QStringList currentDesktops();
