#include "app/singleinstance.h"

#include "app/instancesocket.h"
#include "app/socketfolder.h"
#include "common/log.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDir>

#include <memory>
#include <utility>

#include <unistd.h>

namespace {

constexpr const char *applicationInterface = "org.freedesktop.Application";
const QString tokenKey = QStringLiteral("activation-token");
const QString startupIdKey = QStringLiteral("desktop-startup-id");

// The bus face of the running instance: one method per command, and the
// questions, answered when the handler has the text (it may wait for the
// shortcuts tool), without holding up other calls meanwhile.
class InstanceAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "app.quillon.Quillon")

public:
    InstanceAdaptor(SingleInstance *instance, const QueryHandler &queries)
        : QDBusAbstractAdaptor(instance)
        , m_instance(instance)
        , m_queries(queries)
    {
    }

public Q_SLOTS:
    void Reopen() { Q_EMIT m_instance->commandReceived(InstanceCommand::Reopen, {}); }
    void ToggleSearch() { Q_EMIT m_instance->commandReceived(InstanceCommand::ToggleSearch, {}); }
    void PopUpMenu() { Q_EMIT m_instance->commandReceived(InstanceCommand::PopUpMenu, {}); }
    void ShowSettings() { Q_EMIT m_instance->commandReceived(InstanceCommand::ShowSettings, {}); }

    QString Search(const QString &text, const QDBusMessage &message)
    {
        answer(SearchQuery{text}, message);
        return {};
    }

    QString PrintMenu(int depth, const QDBusMessage &message)
    {
        answer(MenuQuery{depth}, message);
        return {};
    }

private:
    void answer(const InstanceQuery &query, const QDBusMessage &message)
    {
        message.setDelayedReply(true);
        if (!m_queries) {
            QDBusConnection::sessionBus().send(message.createErrorReply(
                QDBusError::NotSupported, QStringLiteral("This Quillon answers no questions")));
            return;
        }
        m_queries(query,
                  [message](const QString &text) { QDBusConnection::sessionBus().send(message.createReply(text)); });
    }

    SingleInstance *m_instance;
    const QueryHandler &m_queries;
};

Activation activationFrom(const QVariantMap &platformData)
{
    return Activation{platformData.value(tokenKey).toString(), platformData.value(startupIdKey).toString()};
}

QVariantMap platformDataOf(const Activation &activation)
{
    QVariantMap data;
    if (!activation.token.isEmpty())
        data.insert(tokenKey, activation.token);
    if (!activation.startupId.isEmpty())
        data.insert(startupIdKey, activation.startupId);
    return data;
}

// The same commands in the desktop's own vocabulary, which carries the
// activation along: Activate is Reopen, every other command is an action
// of its own name.
class ApplicationAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance *instance)
        : QDBusAbstractAdaptor(instance)
        , m_instance(instance)
    {
    }

public Q_SLOTS:
    void Activate(const QVariantMap &platformData)
    {
        Q_EMIT m_instance->commandReceived(InstanceCommand::Reopen, activationFrom(platformData));
    }

    void ActivateAction(const QString &name, const QVariantList &, const QVariantMap &platformData,
                        const QDBusMessage &message)
    {
        const auto command = enumFromString<InstanceCommand>(name);
        if (!command) {
            message.setDelayedReply(true);
            QDBusConnection::sessionBus().send(
                message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("No action named \"%1\"").arg(name)));
            return;
        }
        Q_EMIT m_instance->commandReceived(*command, activationFrom(platformData));
    }

private:
    SingleInstance *m_instance;
};

constexpr int busTimeoutMs = 2000;

QString socketIn(const QString &folder)
{
    return QDir(folder).filePath(QStringLiteral("quillon-%1.socket").arg(getuid()));
}

// Commands go out on a connection of their own. The shared session
// connection takes incoming calls only once the application object that
// first used it runs its event loop; a client's never does, and the instance
// that may follow in the same process must still receive commands.
// A process that sends to itself (as tests do) stays on the
// shared one, where Qt delivers the call without the bus.
bool ownsBusName = false;

QDBusConnection commandBus()
{
    if (ownsBusName)
        return QDBusConnection::sessionBus();
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("quillon-commands"));
}

} // namespace

Activation Activation::fromEnvironment()
{
    return Activation{qEnvironmentVariable("XDG_ACTIVATION_TOKEN"), qEnvironmentVariable("DESKTOP_STARTUP_ID")};
}

ActivationScope::ActivationScope(const Activation &activation)
{
    if (!activation.token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activation.token.toUtf8());
}

ActivationScope::~ActivationScope()
{
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
{
}

SingleInstance::~SingleInstance()
{
    if (m_onBus) {
        QDBusConnection::sessionBus().unregisterService(QLatin1String(serviceName));
        ownsBusName = false;
    }
}

QString SingleInstance::socketPath()
{
    return socketIn(socketFolder().path);
}

SingleInstance::Claim SingleInstance::claim()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return claimSocket();

    new InstanceAdaptor(this, m_queryHandler);
    new ApplicationAdaptor(this);
    if (!bus.registerObject(QLatin1String(objectPath), this)) {
        qCWarning(lcApp, "Could not export %s on the session bus", objectPath);
        return claimSocket();
    }
    const auto reply =
        bus.interface()->registerService(QLatin1String(serviceName), QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        m_onBus = true;
        ownsBusName = true;
        return Claim::Claimed;
    }
    bus.unregisterObject(QLatin1String(objectPath));
    return Claim::Elsewhere;
}

SingleInstance::Claim SingleInstance::claimSocket()
{
    // In a folder others can write to, another user could answer in our
    // name, or stand in the way of the socket: better no Quillon than that.
    const SocketFolder folder = socketFolder();
    if (!folder.isUsable()) {
        qCCritical(lcApp, "%s", qUtf8Printable(folder.problem));
        return Claim::Refused;
    }
    m_socket = new InstanceSocket(this);
    connect(m_socket, &InstanceSocket::commandReceived, this, &SingleInstance::commandReceived);
    return m_socket->listen(socketIn(folder.path)) ? Claim::Claimed : Claim::Elsewhere;
}

bool SingleInstance::send(InstanceCommand command, const Activation &activation)
{
    if (!commandBus().isConnected())
        return sendOverSocket(command, activation);
    return sendOverBus(command, activation);
}

// Only to one that runs: with the service file installed, the bus would
// otherwise start a second Quillon for the first one's own start, and that
// one would take the start for a person asking for the menu. Starting one
// for a command is the light front's job.
bool SingleInstance::sendOverBus(InstanceCommand command, const Activation &activation)
{
    QDBusConnection bus = commandBus();
    if (!activation.isEmpty()) {
        const bool reopen = command == InstanceCommand::Reopen;
        QDBusMessage call = QDBusMessage::createMethodCall(
            QLatin1String(serviceName), QLatin1String(objectPath), QLatin1String(applicationInterface),
            reopen ? QStringLiteral("Activate") : QStringLiteral("ActivateAction"));
        if (reopen)
            call << platformDataOf(activation);
        else
            call << enumToString(command) << QVariantList() << platformDataOf(activation);
        call.setAutoStartService(false);
        const QDBusMessage reply = bus.call(call, QDBus::Block, busTimeoutMs);
        if (reply.type() == QDBusMessage::ReplyMessage)
            return true;
        // An instance from before the activation was passed on: the plain
        // command still reaches it.
        const QDBusError::ErrorType error = QDBusError(reply).type();
        if (error != QDBusError::UnknownMethod && error != QDBusError::UnknownInterface)
            return false;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(QLatin1String(serviceName), QLatin1String(objectPath),
                                                       QLatin1String(serviceName), enumToString(command));
    call.setAutoStartService(false);
    const QDBusMessage reply = bus.call(call, QDBus::Block, busTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage;
}

void SingleInstance::setQueryHandler(QueryHandler handler)
{
    m_queryHandler = std::move(handler);
}

std::optional<QString> SingleInstance::ask(const InstanceQuery &query)
{
    QDBusConnection bus = commandBus();
    if (!bus.isConnected())
        return std::nullopt;
    QDBusMessage call;
    if (const auto *search = std::get_if<SearchQuery>(&query)) {
        call = QDBusMessage::createMethodCall(QLatin1String(serviceName), QLatin1String(objectPath),
                                              QLatin1String(serviceName), QStringLiteral("Search"));
        call << search->text;
    } else {
        call = QDBusMessage::createMethodCall(QLatin1String(serviceName), QLatin1String(objectPath),
                                              QLatin1String(serviceName), QStringLiteral("PrintMenu"));
        call << std::get<MenuQuery>(query).depth;
    }
    // A question is no reason to start an instance.
    call.setAutoStartService(false);
    const QDBusMessage reply = bus.call(call, QDBus::Block, queryTimeoutMs);
    if (reply.type() == QDBusMessage::ReplyMessage && reply.arguments().size() == 1
        && reply.arguments().constFirst().metaType() == QMetaType::fromType<QString>())
        return reply.arguments().constFirst().toString();
    const QDBusError error(reply);
    if (error.type() == QDBusError::ServiceUnknown)
        return std::nullopt;
    qCWarning(lcApp, "The running Quillon did not answer (%s: %s); answering here", qUtf8Printable(error.name()),
              qUtf8Printable(error.message()));
    return std::nullopt;
}

bool SingleInstance::sendOverSocket(InstanceCommand command, const Activation &activation)
{
    const SocketFolder folder = socketFolder();
    if (!folder.isUsable()) {
        qCWarning(lcApp, "%s", qUtf8Printable(folder.problem));
        return false;
    }
    return InstanceSocket::send(socketIn(folder.path), command, activation);
}

#include "singleinstance.moc"
