#pragma once

#include "common/enumstrings.h"

#include <QStringList>

// The ways a program can get global shortcuts, one backend file each.
enum class HotKeyMechanism {
    X11Grabs,     // key grabs on the root window of a real X11 session
    KGlobalAccel, // Plasma's shortcut daemon, so the keys show in System Settings
    Portal,       // org.freedesktop.portal.GlobalShortcuts, where it exists
    None,         // no session bus: nothing to ask
};

template<>
struct EnumCases<HotKeyMechanism> {
    static constexpr std::array<std::pair<HotKeyMechanism, const char *>, 4> cases{{
        {HotKeyMechanism::X11Grabs, "x11Grabs"},
        {HotKeyMechanism::KGlobalAccel, "kglobalaccel"},
        {HotKeyMechanism::Portal, "portal"},
        {HotKeyMechanism::None, "none"},
    }};
};

// What decides the mechanism, gathered from the running session.
struct HotKeySession {
    bool x11 = false;     // Qt talks to an X server
    bool wayland = false; // WAYLAND_DISPLAY is set: that X server is Xwayland
    QStringList desktops; // XDG_CURRENT_DESKTOP
    bool sessionBus = false;
    bool kglobalaccelRunning = false; // org.kde.kglobalaccel has an owner

    static HotKeySession current();
    bool operator==(const HotKeySession &) const = default;
};

HotKeyMechanism hotKeyMechanism(const HotKeySession &session);
