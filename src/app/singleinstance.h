#pragma once

#include "common/enumstrings.h"

#include <QObject>

#include <functional>
#include <optional>
#include <variant>

class InstanceSocket;

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

// Questions another `quillon` asks the running one, which has everything
// loaded already; the answer is the text to print.
struct SearchQuery {
    QString text;
    bool operator==(const SearchQuery &) const = default;
};

struct MenuQuery {
    int depth = 2; // submenu levels filled
    bool operator==(const MenuQuery &) const = default;
};

using InstanceQuery = std::variant<SearchQuery, MenuQuery>;
using QueryReply = std::function<void(const QString &text)>;
using QueryHandler = std::function<void(const InstanceQuery &query, QueryReply reply)>;

// The proof that a person just asked for something, handed by the desktop to
// the process it started (a key binding, a launcher). Compositors give the
// keyboard to a window only with it, so a second `quillon` passes its own on
// to the running one.
struct Activation {
    QString token;     // XDG_ACTIVATION_TOKEN (Wayland)
    QString startupId; // DESKTOP_STARTUP_ID (X11 startup notification)

    bool isEmpty() const { return token.isEmpty() && startupId.isEmpty(); }
    bool operator==(const Activation &) const = default;

    // What this process was started with. Read it before the toolkit starts:
    // on X11 Qt takes DESKTOP_STARTUP_ID out of the environment.
    static Activation fromEnvironment();
};

// While it lives, windows that ask for the keyboard present `activation`'s
// token: Qt's Wayland plugin reads XDG_ACTIVATION_TOKEN when a window
// requests activation and then removes it. A token nobody used is removed
// at the end too, so no later, unasked-for window steals the keyboard with it.
class ActivationScope
{
public:
    explicit ActivationScope(const Activation &activation);
    ~ActivationScope();
    ActivationScope(const ActivationScope &) = delete;
    ActivationScope &operator=(const ActivationScope &) = delete;
};

// One Quillon per session. The first owns the session-bus name
// app.quillon.Quillon and takes commands on /app/quillon/Quillon; without a
// session bus a local socket in the runtime folder (or a private folder of
// this user's) stands in.
//
// On the bus the commands are methods of app.quillon.Quillon without
// arguments, which desktop key bindings can call as they are. With an
// activation the same commands go through org.freedesktop.Application on the
// same object: Activate for Reopen, ActivateAction with the command's name
// for the others, the activation in the platform data
// ("activation-token", "desktop-startup-id").
//
// Questions are bus-only: Search(s text) -> s and PrintMenu(i depth) -> s.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    static constexpr const char *serviceName = "app.quillon.Quillon";
    static constexpr const char *objectPath = "/app/quillon/Quillon";

    enum class Claim {
        Claimed,   // this process is now the one instance
        Elsewhere, // another instance answers: send it a command and leave
        Refused,   // no place for the socket that only this user controls (logged)
    };

    explicit SingleInstance(QObject *parent = nullptr);
    ~SingleInstance() override;

    Claim claim();
    // Sends a command to the running instance; false when none answered.
    static bool send(InstanceCommand command, const Activation &activation = {});

    // Answers questions from other processes; handler must call reply
    // exactly once, now or later. Without a handler questions are refused.
    void setQueryHandler(QueryHandler handler);
    // The running instance's answer; none when no instance is on the bus,
    // or it could not answer (an older one, a failure, no reply in time).
    static std::optional<QString> ask(const InstanceQuery &query);
    // How long ask() waits: the instance may first wait for the shortcuts
    // tool, as the menu does.
    static constexpr int queryTimeoutMs = 15000;

    // The socket used without a session bus; its folder is made when missing.
    static QString socketPath();

Q_SIGNALS:
    void commandReceived(InstanceCommand command, const Activation &activation);

private:
    Claim claimSocket();
    static bool sendOverBus(InstanceCommand command, const Activation &activation);
    static bool sendOverSocket(InstanceCommand command, const Activation &activation);

    QueryHandler m_queryHandler;
    InstanceSocket *m_socket = nullptr;
    bool m_onBus = false;
};
