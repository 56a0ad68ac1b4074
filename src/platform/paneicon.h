#pragma once

#include "catalog/catalog.h"

#include <QIcon>

// Menu icons for settings panes and places, drawn like the desktop's own
// settings icons: a symbolic theme icon in white (or colour) on a gradient
// tile, or the icon of a file.
class PaneIcon
{
public:
    // The icon described, or a null icon. Tiles are drawn once per
    // distinct description and kept.
    static QIcon image(const IconSpec &description);
    // The symbol named: its own theme icon, else its fallback.
    // Private symbols do not exist here, so they go to the fallback.
    static QIcon symbolImage(const IconSpec &description);
    // The icon of the desktop's settings program.
    static QIcon settingsAppIcon();
};
