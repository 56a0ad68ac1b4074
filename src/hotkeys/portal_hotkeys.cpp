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
        setState(State::Unknown);
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
    if (m_state == State::Absent) {
        QMetaObject::invokeMethod(
            this, [this, handle] { refuseAll({handle}, HotKeyRefusal::Unavailable); }, Qt::QueuedConnection);
    }
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
        // Portals without this interface (GNOME before 48, wlroots) answer
        // with an error. With no portal at all nothing is bound either, but
        // the combinations wait for one to start.
        const QString error = call->error().name();
        if (call->isError())
            qCInfo(lcHotKeys, "No GlobalShortcuts portal: %s", qPrintable(call->error().message()));
        if (error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown")
            || error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner"))
            setState(State::Absent);
        else
            setState(call->isError() ? State::Missing : State::Present);
        if (m_state == State::Present && !m_shortcuts.empty())
            scheduleBind();
    });
}

void PortalHotKeys::setState(State state)
{
    const bool wasAvailable = isAvailable();
    m_state = state;
    if (state == State::Absent || state == State::Missing) {
        QList<HotKeyHandle> handles;
        for (const auto &[handle, shortcut] : m_shortcuts)
            handles.append(handle);
        refuseAll(handles, HotKeyRefusal::Unavailable);
    }
    if (wasAvailable != isAvailable())
        Q_EMIT availabilityChanged();
}

void PortalHotKeys::refuseAll(const QList<HotKeyHandle> &handles, HotKeyRefusal refusal)
{
    for (const HotKeyHandle handle : handles) {
        if (m_shortcuts.contains(handle))
            Q_EMIT refused(handle, refusal);
    }
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
    m_inFlight.clear();
    for (const auto &[handle, shortcut] : m_shortcuts)
        m_inFlight.append(handle);
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
        refuseAll(m_inFlight, HotKeyRefusal::Unavailable);
        return;
    }
    if (m_dirty) {
        // Changed meanwhile: start over with the combinations as they are now.
        m_binding = false;
        bind();
        return;
    }
    QList<PortalShortcut> shortcuts;
    m_inFlight.clear();
    for (const auto &[key, shortcut] : m_shortcuts) {
        m_inFlight.append(key);
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

void PortalHotKeys::shortcutsBound(uint response, const QVariantMap &results)
{
    m_bus.disconnect(QString::fromLatin1(service), m_pendingRequest, requestInterface, QStringLiteral("Response"), this,
                     SLOT(shortcutsBound(uint, QVariantMap)));
    m_binding = false;
    if (response != 0) {
        qCWarning(lcHotKeys, "The desktop portal did not bind Quillon's shortcuts (response %u)", response);
        refuseAll(m_inFlight, HotKeyRefusal::Unavailable);
    } else {
        settle(results);
    }
    if (m_dirty)
        bind();
}

// A portal may answer "done" and bind nothing (Plasma 5.27 does so for a
// program without an application id): only the shortcuts it lists, with
// the trigger it chose, are bound.
void PortalHotKeys::settle(const QVariantMap &results)
{
    QMap<QString, QString> triggers;
    const QVariant listed = results.value(QStringLiteral("shortcuts"));
    if (listed.canConvert<QDBusArgument>()) {
        for (const PortalShortcut &shortcut : qdbus_cast<QList<PortalShortcut>>(listed.value<QDBusArgument>()))
            triggers.insert(shortcut.id, shortcut.properties.value(QStringLiteral("trigger_description")).toString());
    }
    for (const HotKeyHandle handle : std::as_const(m_inFlight)) {
        const auto it = m_shortcuts.find(handle);
        if (it == m_shortcuts.end())
            continue;
        const QString id = shortcutId(it->second.id);
        if (!triggers.contains(id)) {
            qCWarning(lcHotKeys, "The desktop portal answered without binding %s (%s)", qPrintable(id),
                      qPrintable(it->second.trigger));
            Q_EMIT refused(handle, HotKeyRefusal::Unavailable);
            continue;
        }
        // An empty description still means bound, just undescribed.
        const QString description = triggers.value(id);
        Q_EMIT bound(handle, description.isEmpty() ? it->second.trigger : description);
    }
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
