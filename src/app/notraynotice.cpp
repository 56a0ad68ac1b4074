#include "app/notraynotice.h"

#include <QCoreApplication>

namespace {

constexpr quint32 searchHotKey = 1;

QString tr(const char *text)
{
    return QCoreApplication::translate("NoTrayNotice", text);
}

} // namespace

PanelNotice noTrayNotice(const BindingRoute &route, const HotKeyCombination &keys,
                         std::function<void(const PanelNotice &next)> show)
{
    const QString command = BindingRoute::command(searchHotKey);
    PanelNotice notice{
        tr("No system tray is available. Use the search hot key, run quillon, or add a tray to your desktop."),
        std::nullopt,
        {},
    };
    if (route.canAddGnomeShortcut()) {
        notice.message +=
            QLatin1Char(' ')
            + tr("GNOME can open this panel with %1 if you add a keyboard shortcut for it.").arg(keys.display);
        const auto add = [route, keys, command, show] {
            const bool added = route.addGnomeShortcut(searchHotKey, keys);
            show(PanelNotice{added ? tr("%1 now opens this panel. Change it in Settings → Keyboard → Keyboard "
                                        "Shortcuts.")
                                         .arg(keys.display)
                                   : tr("GNOME's keyboard settings could not be changed. Add a custom shortcut that "
                                        "runs the command below in Settings → Keyboard."),
                             added ? std::nullopt : std::optional(command),
                             {}});
        };
        const auto back = [route, keys, show] { show(noTrayNotice(route, keys, show)); };
        notice.actions.append(PanelAction{
            tr("Add Keyboard Shortcut…"),
            [keys, command, show, add, back] {
                show(PanelNotice{
                    tr("Add a shortcut to GNOME's keyboard settings that runs “%1” on %2?").arg(command, keys.display),
                    std::nullopt,
                    {{tr("Add Shortcut"), add}, {tr("Cancel"), back}},
                });
            },
        });
    } else if (const QString line = route.configLine(command, keys); !line.isEmpty()) {
        notice.message += QLatin1Char(' ') + tr("To open it with a key, add this line to %1:").arg(route.configFile());
        notice.copyLine = line;
    } else {
        notice.message += QLatin1Char(' ')
                          + tr("To open it with a key, bind this command in your desktop's keyboard "
                               "settings:");
        notice.copyLine = command;
    }
    return notice;
}
