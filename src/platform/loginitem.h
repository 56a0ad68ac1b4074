#pragma once

#include <QString>

#include <optional>

// "Open at Login": an autostart entry in ~/.config/autostart whose command
// carries --autostart, so a login launch is told apart from the user's own.
// Turning it off removes the file: a disabled copy would still be listed by
// some desktops' startup-application tools as ours.
class LoginItem
{
public:
    // `program` is what the entry runs (the installed quillon binary).
    explicit LoginItem(QString program);

    static QString entryPath();
    bool isEnabled() const;
    // Why an entry cannot be written here (a read-only autostart folder),
    // or nothing.
    static std::optional<QString> unavailableReason();
    // The error text when the entry could not be written or removed.
    std::optional<QString> setEnabled(bool enabled) const;

private:
    QString m_program;
};
