#include "app/singleinstance.h"

#include "common/log.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>

#include <unistd.h>

namespace {

// The bus face of the running instance: one method per command.
class InstanceAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.quillon.Quillon")

public:
    explicit InstanceAdaptor(SingleInstance *instance)
        : QDBusAbstractAdaptor(instance)
        , m_instance(instance)
    {
    }

public Q_SLOTS:
    void Reopen() { Q_EMIT m_instance->commandReceived(InstanceCommand::Reopen); }
    void ToggleSearch() { Q_EMIT m_instance->commandReceived(InstanceCommand::ToggleSearch); }
    void PopUpMenu() { Q_EMIT m_instance->commandReceived(InstanceCommand::PopUpMenu); }
    void ShowSettings() { Q_EMIT m_instance->commandReceived(InstanceCommand::ShowSettings); }

private:
    SingleInstance *m_instance;
};

constexpr int socketTimeoutMs = 2000;

} // namespace

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
{
}

SingleInstance::~SingleInstance()
{
    if (m_onBus)
        QDBusConnection::sessionBus().unregisterService(QLatin1String(serviceName));
}

QString SingleInstance::socketPath()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    return QDir(folder).filePath(QStringLiteral("quillon-%1.socket").arg(getuid()));
}

bool SingleInstance::claim()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return claimSocket();

    new InstanceAdaptor(this);
    if (!bus.registerObject(QLatin1String(objectPath), this)) {
        qCWarning(lcApp, "Could not export %s on the session bus", objectPath);
        return claimSocket();
    }
    const auto reply =
        bus.interface()->registerService(QLatin1String(serviceName), QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        m_onBus = true;
        return true;
    }
    bus.unregisterObject(QLatin1String(objectPath));
    return false;
}

bool SingleInstance::claimSocket()
{
    const QString path = socketPath();
    {
        QLocalSocket probe;
        probe.connectToServer(path);
        if (probe.waitForConnected(socketTimeoutMs))
            return false;
    }
    // Nobody answered: whatever socket file is there was left by a crash.
    QLocalServer::removeServer(path);
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(path)) {
        qCWarning(lcApp, "Could not listen on %s: %s", qUtf8Printable(path), qUtf8Printable(m_server->errorString()));
        return true;
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                while (socket->canReadLine()) {
                    const QString line = QString::fromUtf8(socket->readLine()).trimmed();
                    if (const auto command = enumFromString<InstanceCommand>(line))
                        Q_EMIT commandReceived(*command);
                }
            });
        }
    });
    return true;
}

bool SingleInstance::send(InstanceCommand command)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return sendOverSocket(command);
    const QDBusMessage call = QDBusMessage::createMethodCall(QLatin1String(serviceName), QLatin1String(objectPath),
                                                             QLatin1String(serviceName), enumToString(command));
    const QDBusMessage reply = bus.call(call, QDBus::Block, socketTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage;
}

bool SingleInstance::sendOverSocket(InstanceCommand command)
{
    QLocalSocket socket;
    socket.connectToServer(socketPath());
    if (!socket.waitForConnected(socketTimeoutMs))
        return false;
    socket.write(enumToString(command).toUtf8() + '\n');
    socket.flush();
    socket.waitForBytesWritten(socketTimeoutMs);
    socket.disconnectFromServer();
    return true;
}

#include "singleinstance.moc"
