#pragma once

#include "app/singleinstance.h"

#include <QObject>

class QLocalServer;
class QLocalSocket;

// The stand-in for the session bus: a local socket taking one command per
// line, the activation ahead of it as "key=value" lines with the values
// percent-encoded. An instance that does not know a key skips it.
class InstanceSocket : public QObject
{
    Q_OBJECT

public:
    // No line of ours comes near this; a longer one is no client of ours.
    static constexpr qint64 maxLineBytes = 4096;

    explicit InstanceSocket(QObject *parent = nullptr);

    // Listens at `path`, taking over a socket file a crash left there; false
    // when a running instance answers at `path`.
    bool listen(const QString &path);
    // Sends a command to the instance listening at `path`; false when none answered.
    static bool send(const QString &path, InstanceCommand command, const Activation &activation);

Q_SIGNALS:
    void commandReceived(InstanceCommand command, const Activation &activation);

private:
    void accept(QLocalSocket *socket);

    QLocalServer *m_server = nullptr;
};
