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
    // After Quillon moved (an update to another place, a removed copy): an
    // enabled entry whose program is gone is written again for this one.
    // The error text when that failed.
    std::optional<QString> renewIfStale() const;
    // The entry's command: "quillon --autostart" when this program is the
    // quillon on PATH, else its path, quoted as the format wants.
    QString execLine() const;

private:
    QString m_program;
};
