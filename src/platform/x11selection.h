#pragma once

#include <QByteArray>

// Whether some X client owns the selection `<prefix><screen>` of the default
// screen: how X11 desktops announce a tray (_NET_SYSTEM_TRAY_S) or a
// compositor (_NET_WM_CM_S). False away from X11.
bool x11ScreenSelectionOwned(const QByteArray &prefix);
