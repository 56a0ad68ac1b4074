#pragma once

#include "hotkeys/bindingroute.h"
#include "search/panelnotice.h"

#include <functional>

// What the search panel says at start when there is no tray to put the icon
// in: that there is none, how to get back to Quillon, and the desktop's own
// way to bind the search command to a key. On GNOME it offers to add that
// key itself, asking first in the panel (a dialog would take the panel's
// focus and close it); `show` puts each following notice in the panel.
PanelNotice noTrayNotice(const BindingRoute &route, const HotKeyCombination &keys,
                         std::function<void(const PanelNotice &next)> show);
