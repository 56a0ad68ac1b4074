#pragma once

#include "platform/tray.h"

#include <QIcon>

// Quillon's own icons: the application's and the panel glyph, from the icon
// theme folder of the prefix Quillon runs from, else drawn from the copies
// built into the program.

// Lets theme lookups see that folder too, for a copy installed where the
// desktop does not look (a prefix of its own, the build tree). Once, at start.
void addOwnIconFolder();

// The application's icon, for windows and dialogs.
QIcon applicationIcon();

// The panel icon: the drawing legible on any panel, and the symbolic glyph's
// name where a theme has it.
TrayIcon trayIcon();
