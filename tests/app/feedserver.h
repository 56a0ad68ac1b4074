#pragma once

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

// A one-page web server on the loopback address, counting its requests.
// While holding, requests wait for answerHeld(). The feed's signature is
// served beside it when there is one. An endless answer promises far more
// than the body and never ends.
class FeedServer : public QTcpServer
{
public:
    QByteArray body;
    QByteArray signature;
    int status = 200;
    int requests = 0;
    bool holding = false;
    bool endless = false;

    FeedServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    const QByteArray request = socket->readAll();
                    if (!request.contains("\r\n\r\n"))
                        return;
                    ++requests;
                    if (request.split(' ').value(1).endsWith(".sig"))
                        reply(socket, signature.isEmpty() ? 404 : 200, signature);
                    else if (holding)
                        m_held.append(socket);
                    else
                        answer(socket);
                });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/appcast.xml").arg(serverPort())); }

    void answerHeld()
    {
        for (const auto &socket : std::exchange(m_held, {})) {
            if (socket && socket->state() == QAbstractSocket::ConnectedState)
                answer(socket);
        }
    }

private:
    void answer(QTcpSocket *socket) { reply(socket, status, body); }

    void reply(QTcpSocket *socket, int code, const QByteArray &content)
    {
        socket->write(QStringLiteral("HTTP/1.1 %1 X\r\nContent-Length: %2\r\nConnection: close\r\n\r\n")
                          .arg(code)
                          .arg(endless ? 100 * content.size() : content.size())
                          .toUtf8()
                      + content);
        if (!endless)
            socket->disconnectFromHost();
    }

    QList<QPointer<QTcpSocket>> m_held;
};
