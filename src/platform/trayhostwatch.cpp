#include "platform/trayhostwatch.h"

#include "platform/x11selection.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace {
const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
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
    // An XEmbed tray (an old-style panel, or a tray host on a bare X server)
    // and no StatusNotifier watcher: that tray is what Qt will use anyway,
    // so there is nothing to wait for.
    if (!bus.interface()->isServiceRegistered(watcherService) && x11ScreenSelectionOwned("_NET_SYSTEM_TRAY_S")) {
        QTimer::singleShot(0, this, [this] { finish(false); });
        return;
    }
    m_timeout.start();
    auto *serviceWatcher =
        new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForRegistration, this);
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
    QDBusMessage get = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
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
