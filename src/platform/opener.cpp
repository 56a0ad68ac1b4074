#include "platform/opener.h"

#include "common/log.h"
#include "common/mainthread.h"
#include "config/urls.h"
#include "platform/launcher.h"
#include "platform/settingscommand.h"

Opener::Opener(Launcher &launcher, RunShortcut runShortcut)
    : m_launcher(launcher)
    , m_runShortcut(std::move(runShortcut))
{
}

void Opener::open(const QUrl &url) const
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (const auto id = shortcutID(url)) {
        m_runShortcut(*id);
        return;
    }

    const QString address = url.toString(QUrl::FullyEncoded);
    const Launcher::Done report = [address](const std::optional<QString> &error) {
        if (error)
            qCWarning(lcApp, "Could not open %s: %s", qUtf8Printable(address), qUtf8Printable(*error));
    };

    if (kindOf(url) == MenuItemKind::Apps) {
        m_launcher.launchApplication(normalizedURL(url).toLocalFile(), report);
    } else if (isSettingsURL(url)) {
        const auto command = settingsCommand(url);
        if (command)
            m_launcher.startProgram(command->program, command->arguments, report);
        else
            report(QStringLiteral("no settings program for \"%1\"").arg(url.host()));
    } else {
        m_launcher.openWithDefaultHandler(url, report);
    }
}
