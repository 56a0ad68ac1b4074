#pragma once

#include "hotkeys/hotkeycombination.h"

#include <QList>
#include <QString>

#include <optional>

// GNOME's own keyboard shortcuts, read and written through GSettings where
// GNOME's schemas are installed (and silently absent elsewhere).
class GnomeShortcuts
{
public:
    // Every combination GNOME binds: window manager, shell, media keys,
    // mutter, and the user's custom shortcuts except those running `ownCommand`.
    static QList<HotKeyCombination> inUse(const QString &ownCommand = QStringLiteral("quillon"));

    // The custom shortcuts of GNOME's keyboard settings, which run a command.
    static bool canAddCustom();
    static bool addCustom(const QString &name, const QString &command, quint32 keyCode, quint32 modifiers);
    // Removes every custom shortcut that runs `command`; false when there was none.
    static bool removeCustom(const QString &command);
    // The accelerator of the custom shortcut running `command`.
    static std::optional<QString> customBinding(const QString &command);
};
