#include "app/instancesocket.h"

#include "common/log.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QUrl>

#include <memory>
#include <utility>

namespace {

constexpr int timeoutMs = 2000;
const QString tokenKey = QStringLiteral("activation-token");
const QString startupIdKey = QStringLiteral("desktop-startup-id");

QByteArray line(const QString &key, const QString &value)
{
    return key.toUtf8() + '=' + QUrl::toPercentEncoding(value) + '\n';
}

} // namespace

InstanceSocket::InstanceSocket(QObject *parent)
    : QObject(parent)
{
}

bool InstanceSocket::listen(const QString &path)
{
    {
        QLocalSocket probe;
        probe.connectToServer(path);
        if (probe.waitForConnected(timeoutMs))
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
        while (QLocalSocket *socket = m_server->nextPendingConnection())
            accept(socket);
    });
    return true;
}

void InstanceSocket::accept(QLocalSocket *socket)
{
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    // Unread bytes stay in the socket, not in a buffer of ours, once this
    // much waits without a line end.
    socket->setReadBufferSize(maxLineBytes);
    auto pending = std::make_shared<Activation>();
    const auto refuse = [socket] {
        qCWarning(lcApp, "Closed an instance connection: a line longer than %lld bytes", qlonglong(maxLineBytes));
        socket->abort();
    };
    connect(socket, &QLocalSocket::readyRead, this, [this, socket, pending, refuse] {
        while (socket->canReadLine()) {
            // Qt keeps one byte of the bound for a terminating zero.
            const QByteArray raw = socket->readLine(maxLineBytes + 1);
            if (!raw.endsWith('\n') || raw.size() > maxLineBytes)
                return refuse();
            const QString text = QString::fromUtf8(raw).trimmed();
            const qsizetype equals = text.indexOf(u'=');
            if (equals < 0) {
                if (const auto command = enumFromString<InstanceCommand>(text))
                    Q_EMIT commandReceived(*command, std::exchange(*pending, {}));
                continue;
            }
            const QString key = text.left(equals);
            const QString value = QUrl::fromPercentEncoding(text.mid(equals + 1).toUtf8());
            if (key == tokenKey)
                pending->token = value;
            else if (key == startupIdKey)
                pending->startupId = value;
        }
        if (socket->bytesAvailable() >= maxLineBytes)
            refuse();
    });
}

bool InstanceSocket::send(const QString &path, InstanceCommand command, const Activation &activation)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    if (!activation.token.isEmpty())
        socket.write(line(tokenKey, activation.token));
    if (!activation.startupId.isEmpty())
        socket.write(line(startupIdKey, activation.startupId));
    socket.write(enumToString(command).toUtf8() + '\n');
    socket.flush();
    socket.waitForBytesWritten(timeoutMs);
    socket.disconnectFromServer();
    return true;
}
