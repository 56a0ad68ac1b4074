#pragma once

#include <QString>
#include <QUrl>

#include <functional>

class Launcher;

// The one way anything is opened: shortcuts run through the shortcut
// library, desktop entries are launched, settings places open in the
// desktop's settings program, everything else goes to its default handler.
// Failures are logged, never shown.
class Opener
{
public:
    using RunShortcut = std::function<void(const QString &id)>;

    Opener(Launcher &launcher, RunShortcut runShortcut);

    void open(const QUrl &url) const;

private:
    Launcher &m_launcher;
    RunShortcut m_runShortcut;
};
