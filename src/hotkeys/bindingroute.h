#pragma once

#include "common/enumstrings.h"
#include "hotkeys/hotkeycombination.h"

#include <QString>
#include <QStringList>

#include <optional>

// Desktops whose own way of binding keys to commands Quillon knows.
enum class RouteDesktop {
    Gnome,    // Settings → Keyboard → custom shortcuts, in GSettings
    Plasma,   // System Settings → Shortcuts
    Sway,     // a bindsym line in its configuration file
    Hyprland, // a bind line in its configuration file
    Other,
};

template<>
struct EnumCases<RouteDesktop> {
    static constexpr std::array<std::pair<RouteDesktop, const char *>, 5> cases{{
        {RouteDesktop::Gnome, "gnome"},
        {RouteDesktop::Plasma, "plasma"},
        {RouteDesktop::Sway, "sway"},
        {RouteDesktop::Hyprland, "hyprland"},
        {RouteDesktop::Other, "other"},
    }};
};

// Where Quillon cannot have global shortcuts itself, the desktop can still
// run Quillon's commands on a key: this says which command, how the
// desktop is told, and does it where Quillon may (GNOME's custom shortcuts).
// Free of widgets, so any window can show it.
class BindingRoute
{
public:
    explicit BindingRoute(RouteDesktop desktop)
        : m_desktop(desktop)
    {
    }
    // From XDG_CURRENT_DESKTOP and the compositors' own variables.
    static BindingRoute forSession();
    static RouteDesktop desktopOf(const QStringList &desktops, bool swaySocket, bool hyprlandInstance);

    RouteDesktop desktop() const { return m_desktop; }

    // The command that does what hot key `id` does: 1 the search panel,
    // 2 the menu.
    static QString command(quint32 id);
    // The combination to suggest when none is saved.
    static HotKeyCombination suggestedCombination(quint32 id);

    // The line that binds `command` to the keys in the desktop's
    // configuration file, and that file; empty where the desktop binds keys
    // in a settings program instead.
    QString configLine(const QString &command, const HotKeyCombination &keys) const;
    QString configFile() const;

    // GNOME's custom shortcuts: whether Quillon can add one here, add one
    // for hot key `id`, and the accelerator of the one there is.
    bool canAddGnomeShortcut() const;
    bool addGnomeShortcut(quint32 id, const HotKeyCombination &keys) const;
    std::optional<HotKeyCombination> gnomeShortcut(quint32 id) const;

private:
    RouteDesktop m_desktop;
};
