#include "hotkeys/bindingroute.h"

#include "hotkeys/accelerators.h"
#include "hotkeys/gnomeshortcuts.h"
#include "sources/xdgdirs.h"

#include <QCoreApplication>
#include <QKeySequence>

namespace {

bool names(const QStringList &desktops, QLatin1String name)
{
    return std::any_of(desktops.begin(), desktops.end(),
                       [name](const QString &desktop) { return desktop.compare(name, Qt::CaseInsensitive) == 0; });
}

QString gnomeName(quint32 id)
{
    return id == 2 ? QCoreApplication::translate("BindingRoute", "Quillon: Show Menu")
                   : QCoreApplication::translate("BindingRoute", "Quillon: Show Search");
}

} // namespace

BindingRoute BindingRoute::forSession()
{
    return BindingRoute(desktopOf(currentDesktops(), !qEnvironmentVariableIsEmpty("SWAYSOCK"),
                                  !qEnvironmentVariableIsEmpty("HYPRLAND_INSTANCE_SIGNATURE")));
}

// Sway does not name itself in XDG_CURRENT_DESKTOP unless the session
// script does; its socket variable is always there.
RouteDesktop BindingRoute::desktopOf(const QStringList &desktops, bool swaySocket, bool hyprlandInstance)
{
    if (names(desktops, QLatin1String("GNOME")))
        return RouteDesktop::Gnome;
    if (names(desktops, QLatin1String("KDE")))
        return RouteDesktop::Plasma;
    if (names(desktops, QLatin1String("Hyprland")) || hyprlandInstance)
        return RouteDesktop::Hyprland;
    if (names(desktops, QLatin1String("sway")) || swaySocket)
        return RouteDesktop::Sway;
    return RouteDesktop::Other;
}

QString BindingRoute::command(quint32 id)
{
    return id == 2 ? QStringLiteral("quillon --menu") : QStringLiteral("quillon --toggle-search");
}

HotKeyCombination BindingRoute::suggestedCombination(quint32 id)
{
    const quint32 key = id == 2 ? Qt::Key_M : Qt::Key_Space;
    const quint32 modifiers = HotKeyModifier::Ctrl | HotKeyModifier::Alt;
    return {key, modifiers,
            QKeySequence(int(key) | Qt::ControlModifier | Qt::AltModifier).toString(QKeySequence::NativeText)};
}

QString BindingRoute::configLine(const QString &command, const HotKeyCombination &keys) const
{
    const bool ctrl = keys.modifiers & HotKeyModifier::Ctrl;
    const bool alt = keys.modifiers & HotKeyModifier::Alt;
    const bool shift = keys.modifiers & HotKeyModifier::Shift;
    const bool super = keys.modifiers & HotKeyModifier::Super;
    QStringList parts;
    switch (m_desktop) {
    case RouteDesktop::Sway:
        // Sway's modifier names; Mod4 is the logo key.
        for (const auto &[on, name] : {std::pair{super, "Mod4"}, {ctrl, "Ctrl"}, {alt, "Alt"}, {shift, "Shift"}}) {
            if (on)
                parts.append(QString::fromLatin1(name));
        }
        parts.append(keysymName(keys.keyCode));
        return QStringLiteral("bindsym %1 exec %2").arg(parts.join(u'+'), command);
    case RouteDesktop::Hyprland:
        for (const auto &[on, name] : {std::pair{super, "SUPER"}, {ctrl, "CTRL"}, {alt, "ALT"}, {shift, "SHIFT"}}) {
            if (on)
                parts.append(QString::fromLatin1(name));
        }
        return QStringLiteral("bind = %1, %2, exec, %3").arg(parts.join(u' '), keysymName(keys.keyCode), command);
    case RouteDesktop::Gnome:
    case RouteDesktop::Plasma:
    case RouteDesktop::Other:
        break;
    }
    return {};
}

QString BindingRoute::configFile() const
{
    switch (m_desktop) {
    case RouteDesktop::Sway:
        return QStringLiteral("~/.config/sway/config");
    case RouteDesktop::Hyprland:
        return QStringLiteral("~/.config/hypr/hyprland.conf");
    case RouteDesktop::Gnome:
    case RouteDesktop::Plasma:
    case RouteDesktop::Other:
        break;
    }
    return {};
}

bool BindingRoute::canAddGnomeShortcut() const
{
    return m_desktop == RouteDesktop::Gnome && GnomeShortcuts::canAddCustom();
}

bool BindingRoute::addGnomeShortcut(quint32 id, const HotKeyCombination &keys) const
{
    return canAddGnomeShortcut() && GnomeShortcuts::addCustom(gnomeName(id), command(id), keys.keyCode, keys.modifiers);
}

std::optional<HotKeyCombination> BindingRoute::gnomeShortcut(quint32 id) const
{
    if (m_desktop != RouteDesktop::Gnome)
        return std::nullopt;
    const auto accelerator = GnomeShortcuts::customBinding(command(id));
    auto keys = accelerator ? fromGtkAccelerator(*accelerator) : std::nullopt;
    if (keys) {
        int combined = int(keys->keyCode);
        for (const auto &[ours, qt] : {std::pair{HotKeyModifier::Ctrl, Qt::ControlModifier},
                                       {HotKeyModifier::Alt, Qt::AltModifier},
                                       {HotKeyModifier::Shift, Qt::ShiftModifier},
                                       {HotKeyModifier::Super, Qt::MetaModifier}}) {
            if (keys->modifiers & ours)
                combined |= int(qt);
        }
        keys->display = QKeySequence(combined).toString(QKeySequence::NativeText);
    }
    return keys;
}
