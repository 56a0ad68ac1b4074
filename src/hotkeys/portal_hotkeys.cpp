#include "hotkeys/portal_hotkeys.h"

#include "common/log.h"
#include "common/mainthread.h"
#include "hotkeys/accelerators.h"
#include "hotkeys/hotkeycombination.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

// One entry of BindShortcuts' a(sa{sv}).
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(PortalShortcut)

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

namespace {

const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
// Fixed, so that the desktop files the shortcuts under the same name every
// time and keeps what the user changed in its own settings.
const QString sessionToken = QStringLiteral("quillon");

QString description(quint32 id)
{
    switch (id) {
    case 1:
        return QCoreApplication::translate("PortalHotKeys", "Show or hide the Quillon search panel");
    case 2:
        return QCoreApplication::translate("PortalHotKeys", "Open the Quillon menu at the mouse");
    default:
        return QCoreApplication::translate("PortalHotKeys", "Quillon shortcut %1").arg(id);
    }
}

} // namespace

PortalHotKeys::PortalHotKeys(const QDBusConnection &bus)
    : m_bus(bus)
    , m_watcher(new QDBusServiceWatcher(
          QString::fromLatin1(service), m_bus,
          QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration, this))
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    // The portal may start after us, or restart: bind again in its new life.
    // Requests in flight die with the old portal.
    connect(m_watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        m_session.clear();
        m_binding = false;
        probe();
    });
    connect(m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        m_session.clear();
        m_binding = false;
        m_state = State::Unknown;
    });
    m_bus.connect(QString::fromLatin1(service), QString::fromLatin1(path), QString::fromLatin1(interface),
                  QStringLiteral("Activated"), this, SLOT(shortcutActivated(QDBusMessage)));
    probe();
}

PortalHotKeys::~PortalHotKeys()
{
    closeSession();
}

HotKeyGrab PortalHotKeys::grab(quint32 keyCode, quint32 modifiers, quint32 id)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (m_state == State::Missing)
        return HotKeyRefusal::Unavailable;
    const HotKeyHandle handle = m_nextHandle++;
    m_shortcuts.emplace(handle, Shortcut{id, trigger(keyCode, modifiers)});
    scheduleBind();
    return handle;
}

void PortalHotKeys::release(HotKeyHandle handle)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (m_shortcuts.erase(handle) > 0)
        scheduleBind();
}

QString PortalHotKeys::shortcutId(quint32 id)
{
    return QStringLiteral("hotkey-%1").arg(id);
}

QString PortalHotKeys::trigger(quint32 keyCode, quint32 modifiers)
{
    QStringList parts;
    if (modifiers & HotKeyModifier::Ctrl)
        parts.append(QStringLiteral("CTRL"));
    if (modifiers & HotKeyModifier::Alt)
        parts.append(QStringLiteral("ALT"));
    if (modifiers & HotKeyModifier::Shift)
        parts.append(QStringLiteral("SHIFT"));
    if (modifiers & HotKeyModifier::Super)
        parts.append(QStringLiteral("LOGO"));
    parts.append(keysymName(keyCode));
    return parts.join(u'+');
}

void PortalHotKeys::probe()
{
    QDBusMessage get =
        QDBusMessage::createMethodCall(QString::fromLatin1(service), QString::fromLatin1(path),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QString::fromLatin1(interface) << QStringLiteral("version");
    auto *call = new QDBusPendingCallWatcher(m_bus.asyncCall(get), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *call) {
        call->deleteLater();
        const QString error = call->error().name();
        // No portal yet: it may still start, and the watcher will see it.
        if (error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown")
            || error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner"))
            return;
        // Portals without this interface (GNOME before 48) answer with an error.
        m_state = call->isError() ? State::Missing : State::Present;
        if (m_state == State::Present && !m_shortcuts.empty())
            scheduleBind();
    });
}

// Changes made together (a replaced combination is a release and a grab)
// go into one session.
void PortalHotKeys::scheduleBind()
{
    m_dirty = true;
    if (m_queued)
        return;
    m_queued = true;
    QMetaObject::invokeMethod(this, &PortalHotKeys::bind, Qt::QueuedConnection);
}

void PortalHotKeys::bind()
{
    m_queued = false;
    if (m_state != State::Present || m_binding || !m_dirty)
        return;
    m_dirty = false;
    closeSession();
    if (m_shortcuts.empty())
        return;
    m_binding = true;
    const QString token = nextToken();
    if (!watchResponse(token, SLOT(sessionCreated(uint, QVariantMap)))) {
        m_binding = false;
        return;
    }
    m_bus.asyncCall(QDBusMessage::createMethodCall(QString::fromLatin1(service), QString::fromLatin1(path),
                                                   QString::fromLatin1(interface), QStringLiteral("CreateSession"))
                    << QVariantMap{{QStringLiteral("handle_token"), token},
                                   {QStringLiteral("session_handle_token"), sessionToken}});
}

void PortalHotKeys::sessionCreated(uint response, const QVariantMap &results)
{
    m_bus.disconnect(QString::fromLatin1(service), m_pendingRequest, requestInterface, QStringLiteral("Response"), this,
                     SLOT(sessionCreated(uint, QVariantMap)));
    const QVariant handle = results.value(QStringLiteral("session_handle"));
    m_session = handle.canConvert<QDBusObjectPath>() ? handle.value<QDBusObjectPath>().path() : handle.toString();
    if (response != 0 || m_session.isEmpty()) {
        qCWarning(lcHotKeys, "The desktop portal did not open a shortcut session (response %u)", response);
        m_binding = false;
        return;
    }
    if (m_dirty) {
        // Changed meanwhile: start over with the combinations as they are now.
        m_binding = false;
        bind();
        return;
    }
    QList<PortalShortcut> shortcuts;
    for (const auto &[key, shortcut] : m_shortcuts) {
        shortcuts.append({shortcutId(shortcut.id),
                          {{QStringLiteral("description"), description(shortcut.id)},
                           {QStringLiteral("preferred_trigger"), shortcut.trigger}}});
    }
    const QString token = nextToken();
    if (!watchResponse(token, SLOT(shortcutsBound(uint, QVariantMap)))) {
        m_binding = false;
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(QString::fromLatin1(service), QString::fromLatin1(path),
                                                       QString::fromLatin1(interface), QStringLiteral("BindShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(m_session)) << QVariant::fromValue(shortcuts) << QString()
         << QVariantMap{{QStringLiteral("handle_token"), token}};
    m_bus.asyncCall(call);
}

void PortalHotKeys::shortcutsBound(uint response, const QVariantMap &)
{
    m_bus.disconnect(QString::fromLatin1(service), m_pendingRequest, requestInterface, QStringLiteral("Response"), this,
                     SLOT(shortcutsBound(uint, QVariantMap)));
    m_binding = false;
    if (response != 0)
        qCWarning(lcHotKeys, "The desktop portal did not bind Quillon's shortcuts (response %u)", response);
    if (m_dirty)
        bind();
}

// Activated(o session, s id, t timestamp, a{sv} options)
void PortalHotKeys::shortcutActivated(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (arguments.size() < 2 || arguments.at(0).value<QDBusObjectPath>().path() != m_session || m_session.isEmpty())
        return;
    const QString id = arguments.at(1).toString();
    for (const auto &[handle, shortcut] : m_shortcuts) {
        if (shortcutId(shortcut.id) == id) {
            Q_EMIT activated(shortcut.id);
            return;
        }
    }
}

void PortalHotKeys::closeSession()
{
    if (m_session.isEmpty())
        return;
    m_bus.asyncCall(QDBusMessage::createMethodCall(QString::fromLatin1(service), m_session,
                                                   QStringLiteral("org.freedesktop.portal.Session"),
                                                   QStringLiteral("Close")));
    m_session.clear();
}

// The portal answers on a request object whose path it derives from our bus
// name and the token; listen there before asking, so no answer is missed.
QString PortalHotKeys::requestPath(const QString &token) const
{
    QString sender = m_bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

bool PortalHotKeys::watchResponse(const QString &token, const char *slot)
{
    m_pendingRequest = requestPath(token);
    return m_bus.connect(QString::fromLatin1(service), m_pendingRequest, requestInterface, QStringLiteral("Response"),
                         this, slot);
}

QString PortalHotKeys::nextToken()
{
    return QStringLiteral("quillon%1").arg(++m_tokens);
}
