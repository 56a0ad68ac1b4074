#include "platform/trayhostwatch.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>

#include <xcb/xcb.h>

namespace {
const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
// An XEmbed tray (an old-style panel, or a tray host on a bare X server)
// owns this selection. Without a StatusNotifier watcher it is what Qt will
// use anyway, so there is nothing to wait for.
bool hasXEmbedTray()
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t *connection = x11 ? x11->connection() : nullptr;
    if (!connection)
        return false;
    const xcb_setup_t *setup = xcb_get_setup(connection);
    int screens = xcb_setup_roots_length(setup);
    for (int screen = 0; screen < screens; ++screen) {
        const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(screen);
        xcb_intern_atom_reply_t *atom = xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 1, uint16_t(name.size()), name.constData()), nullptr);
        if (!atom)
            continue;
        xcb_get_selection_owner_reply_t *owner =
            atom->atom == XCB_NONE ? nullptr
                                   : xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr);
        const bool owned = owner && owner->owner != XCB_NONE;
        free(owner);
        free(atom);
        if (owned)
            return true;
    }
    return false;
}

} // namespace

TrayHostWatch::TrayHostWatch(int timeoutMs, QObject *parent)
    : QObject(parent)
{
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(timeoutMs);
    connect(&m_timeout, &QTimer::timeout, this, [this] { finish(false); });
}

void TrayHostWatch::start()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        QTimer::singleShot(0, this, [this] { finish(false); });
        return;
    }
    if (!bus.interface()->isServiceRegistered(watcherService) && hasXEmbedTray()) {
        QTimer::singleShot(0, this, [this] { finish(false); });
        return;
    }
    m_timeout.start();
    auto *serviceWatcher = new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(serviceWatcher, &QDBusServiceWatcher::serviceRegistered, this, &TrayHostWatch::askWatcher);
    bus.connect(watcherService, watcherPath, watcherService, QStringLiteral("StatusNotifierHostRegistered"), this,
                SLOT(hostRegistered()));
    askWatcher();
}

void TrayHostWatch::hostRegistered()
{
    finish(true);
}

void TrayHostWatch::askWatcher()
{
    QDBusMessage get = QDBusMessage::createMethodCall(watcherService, watcherPath,
                                                      QStringLiteral("org.freedesktop.DBus.Properties"),
                                                      QStringLiteral("Get"));
    get << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    auto *call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(get), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *call) {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        call->deleteLater();
        if (reply.isValid() && reply.value().variant().toBool())
            finish(true);
    });
}

void TrayHostWatch::finish(bool hostFound)
{
    if (m_done)
        return;
    m_done = true;
    m_timeout.stop();
    Q_EMIT ready(hostFound);
}
