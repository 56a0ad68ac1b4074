#pragma once

#include "hotkeys/bindingroute.h"
#include "search/panelnotice.h"

#include <functional>

// What the search panel says at start when there is no tray to put the icon
// in: that there is none, how to get back to Quillon, and the desktop's own
// way to bind the search command to a key. `confirm` asks before GNOME's
// settings are changed; `done` shows the outcome of that change.
PanelNotice noTrayNotice(const BindingRoute &route, const HotKeyCombination &keys,
                         std::function<bool(const QString &question)> confirm,
                         std::function<void(const PanelNotice &outcome)> done);
