#pragma once

#include "common/enumstrings.h"

#include <QObject>

#include <optional>

class QLocalServer;

// What another `quillon` asks of the running one.
enum class InstanceCommand { Reopen, ToggleSearch, PopUpMenu, ShowSettings };

template<>
struct EnumCases<InstanceCommand> {
    static constexpr std::array<std::pair<InstanceCommand, const char *>, 4> cases{{
        {InstanceCommand::Reopen, "Reopen"},
        {InstanceCommand::ToggleSearch, "ToggleSearch"},
        {InstanceCommand::PopUpMenu, "PopUpMenu"},
        {InstanceCommand::ShowSettings, "ShowSettings"},
    }};
};

// One Quillon per session. The first owns the session-bus name
// app.quillon.Quillon and takes commands on /app/quillon/Quillon; without a
// session bus a local socket in the runtime folder stands in.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    static constexpr const char *serviceName = "app.quillon.Quillon";
    static constexpr const char *objectPath = "/app/quillon/Quillon";

    explicit SingleInstance(QObject *parent = nullptr);
    ~SingleInstance() override;

    // True when this process is now the one instance. False when another
    // instance answers (then send it a command and leave).
    bool claim();
    // Sends a command to the running instance; false when none answered.
    static bool send(InstanceCommand command);

    // The socket used without a session bus.
    static QString socketPath();

Q_SIGNALS:
    void commandReceived(InstanceCommand command);

private:
    bool claimSocket();
    static bool sendOverSocket(InstanceCommand command);

    QLocalServer *m_server = nullptr;
    bool m_onBus = false;
};
