#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <optional>

// The desktop's ways of starting things. Each reports, possibly later, either
// nothing (it worked) or the reason it failed.
class Launcher
{
public:
    using Done = std::function<void(const std::optional<QString> &error)>;

    virtual ~Launcher() = default;

    // Starts the application a desktop entry file describes.
    virtual void launchApplication(const QString &desktopFile, const Done &done) = 0;
    // Hands a URL (file, folder, web page, mail link) to its default handler.
    virtual void openWithDefaultHandler(const QUrl &url, const Done &done) = 0;
    // Starts a program without waiting for it.
    virtual void startProgram(const QString &program, const QStringList &arguments, const Done &done) = 0;
};
