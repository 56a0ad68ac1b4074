#include "hotkeys/hotkeymechanism.h"

#include "sources/xdgdirs.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QGuiApplication>

HotKeySession HotKeySession::current()
{
    HotKeySession session;
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    session.x11 = x11 != nullptr && x11->connection() != nullptr;
    session.wayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    session.desktops = currentDesktops();
    const QDBusConnection bus = QDBusConnection::sessionBus();
    session.sessionBus = bus.isConnected();
    if (session.sessionBus && bus.interface() != nullptr)
        session.kglobalaccelRunning = bus.interface()->isServiceRegistered(QStringLiteral("org.kde.kglobalaccel"));
    return session;
}

HotKeyMechanism hotKeyMechanism(const HotKeySession &session)
{
    const bool plasma = std::any_of(session.desktops.begin(), session.desktops.end(), [](const QString &desktop) {
        return desktop.compare(QLatin1String("KDE"), Qt::CaseInsensitive) == 0;
    });
    if (plasma && session.sessionBus)
        return HotKeyMechanism::KGlobalAccel;
    // Under Xwayland a grab fires only while an X11 window has the focus.
    if (session.x11 && !session.wayland)
        return HotKeyMechanism::X11Grabs;
    if (!session.sessionBus)
        return HotKeyMechanism::None;
    // A bare KWin session names no desktop but runs the daemon. Merely being
    // activatable proves nothing: any KDE program installs the service file,
    // and the daemon cannot see keys under another Wayland compositor.
    if (session.desktops.isEmpty() && session.kglobalaccelRunning)
        return HotKeyMechanism::KGlobalAccel;
    return HotKeyMechanism::Portal;
}
