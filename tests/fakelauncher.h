#pragma once

#include "platform/launcher.h"

#include <QStringList>

#include <functional>
#include <optional>

// Records what would have been started ("launch <file>", "default <url>",
// "start <program>|<arguments>"), with what `witness` says at that moment,
// and fails when told to.
class FakeLauncher final : public Launcher
{
public:
    QStringList calls;
    std::optional<QString> failure;
    std::function<QString()> witness;

    void launchApplication(const QString &desktopFile, const Done &done) override
    {
        record(QStringLiteral("launch ") + desktopFile, done);
    }
    void openWithDefaultHandler(const QUrl &url, const Done &done) override
    {
        record(QStringLiteral("default ") + url.toString(), done);
    }
    void startProgram(const QString &program, const QStringList &arguments, const Done &done) override
    {
        record(QStringLiteral("start ") + (QStringList{program} + arguments).join(QLatin1Char('|')), done);
    }

private:
    void record(const QString &call, const Done &done)
    {
        calls.append(witness ? call + QLatin1Char(' ') + witness() : call);
        done(failure);
    }
};
