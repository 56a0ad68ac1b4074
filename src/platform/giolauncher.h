#pragma once

#include "platform/launcher.h"

// Launching through GIO, the desktop's own implementation of desktop entries
// and default handlers, so launches behave (and fail) as they do from the
// desktop's own menus.
class GioLauncher final : public Launcher
{
public:
    void launchApplication(const QString &desktopFile, const Done &done) override;
    void openWithDefaultHandler(const QUrl &url, const Done &done) override;
    void startProgram(const QString &program, const QStringList &arguments, const Done &done) override;
};
