#include "platform/giolauncher.h"

#include <QProcess>
#include <QStandardPaths>

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <memory>

namespace {

// A launch context whose children do not inherit our session-manager
// start-up id: they would otherwise be taken for Quillon itself.
GAppLaunchContext *newLaunchContext()
{
    GAppLaunchContext *context = g_app_launch_context_new();
    g_app_launch_context_unsetenv(context, "DESKTOP_AUTOSTART_ID");
    return context;
}

QString takeMessage(GError *error)
{
    const QString message = QString::fromUtf8(error->message);
    g_error_free(error);
    return message;
}

void defaultHandlerFinished(GObject *, GAsyncResult *result, gpointer data)
{
    std::unique_ptr<Launcher::Done> done(static_cast<Launcher::Done *>(data));
    GError *error = nullptr;
    if (g_app_info_launch_default_for_uri_finish(result, &error))
        (*done)(std::nullopt);
    else
        (*done)(takeMessage(error));
}

} // namespace

void GioLauncher::launchApplication(const QString &desktopFile, const Done &done)
{
    GDesktopAppInfo *info = g_desktop_app_info_new_from_filename(desktopFile.toUtf8().constData());
    if (info == nullptr) {
        done(QStringLiteral("not a valid desktop entry"));
        return;
    }
    GAppLaunchContext *context = newLaunchContext();
    GError *error = nullptr;
    const bool launched = g_app_info_launch(G_APP_INFO(info), nullptr, context, &error);
    g_object_unref(context);
    g_object_unref(info);
    done(launched ? std::nullopt : std::optional<QString>(takeMessage(error)));
}

void GioLauncher::openWithDefaultHandler(const QUrl &url, const Done &done)
{
    // Asynchronous: finding the handler may ask a portal over D-Bus. The
    // answer comes through the GLib main loop Qt runs on.
    GAppLaunchContext *context = newLaunchContext();
    g_app_info_launch_default_for_uri_async(url.toString(QUrl::FullyEncoded).toUtf8().constData(), context, nullptr,
                                            defaultHandlerFinished, new Done(done));
    g_object_unref(context);
}

void GioLauncher::startProgram(const QString &program, const QStringList &arguments, const Done &done)
{
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty()) {
        done(QStringLiteral("%1 is not installed").arg(program));
        return;
    }
    QProcess process;
    process.setProgram(path);
    process.setArguments(arguments);
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DESKTOP_AUTOSTART_ID"));
    process.setProcessEnvironment(environment);
    if (process.startDetached())
        done(std::nullopt);
    else
        done(QStringLiteral("%1 could not be started").arg(path));
}
