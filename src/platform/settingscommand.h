#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

// The command line that opens a settings place:
//   settings://gnome/<panel>[/<argument>…]  → gnome-control-center <panel> <argument>…
//   settings://kde/<module>[/<argument>…]   → systemsettings <module> [--args "<argument> …"]
struct SettingsCommand {
    QString program;
    QStringList arguments;
    bool operator==(const SettingsCommand &) const = default;
};

std::optional<SettingsCommand> settingsCommand(const QUrl &url);
