#include "hotkeys/kglobalaccel_hotkeys.h"

#include "common/log.h"
#include "common/mainthread.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QKeySequence>

// One key sequence as the daemon passes it, (ai): always four chords, the
// unused ones 0.
struct KdeKeySequence {
    int chords[4] = {0, 0, 0, 0};
};
Q_DECLARE_METATYPE(KdeKeySequence)

QDBusArgument &operator<<(QDBusArgument &argument, const KdeKeySequence &sequence)
{
    argument.beginStructure();
    argument.beginArray(QMetaType::fromType<int>());
    for (const int chord : sequence.chords)
        argument << chord;
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, KdeKeySequence &sequence)
{
    argument.beginStructure();
    argument.beginArray();
    for (int i = 0; !argument.atEnd(); ++i) {
        int chord = 0;
        argument >> chord;
        if (i < 4)
            sequence.chords[i] = chord;
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

namespace {

// setShortcutKeys' flags: the action is in use now; take these keys rather
// than those the daemon remembers; the keys are the action's default.
constexpr uint setPresent = 2;
constexpr uint noAutoloading = 4;
constexpr uint isDefault = 8;

const QList<std::pair<quint32, Qt::KeyboardModifier>> modifierBits{
    {HotKeyModifier::Ctrl, Qt::ControlModifier},
    {HotKeyModifier::Alt, Qt::AltModifier},
    {HotKeyModifier::Shift, Qt::ShiftModifier},
    {HotKeyModifier::Super, Qt::MetaModifier},
};

QString friendlyName(quint32 id)
{
    switch (id) {
    case 1:
        return QCoreApplication::translate("KGlobalAccelHotKeys", "Show Search Panel");
    case 2:
        return QCoreApplication::translate("KGlobalAccelHotKeys", "Show Menu at Mouse");
    default:
        return QCoreApplication::translate("KGlobalAccelHotKeys", "Shortcut %1").arg(id);
    }
}

// The first chord of the first sequence; the rest cannot be a hot key here.
int firstKey(const QDBusArgument &argument)
{
    QList<KdeKeySequence> sequences;
    argument >> sequences;
    return sequences.isEmpty() ? 0 : sequences.first().chords[0];
}

QString describe(int key)
{
    return QKeySequence(key).toString(QKeySequence::NativeText);
}

} // namespace

KGlobalAccelHotKeys::KGlobalAccelHotKeys(const QDBusConnection &bus)
    : m_bus(bus)
{
    qDBusRegisterMetaType<KdeKeySequence>();
    qDBusRegisterMetaType<QList<KdeKeySequence>>();
    // Changes made in System Settings come to the owner of the action.
    for (const char *signal : {"yourShortcutsChanged", "yourShortcutGotChanged"}) {
        m_bus.connect(QString::fromLatin1(service), QString::fromLatin1(path), QString::fromLatin1(interface),
                      QString::fromLatin1(signal), this, SLOT(shortcutsChanged(QDBusMessage)));
    }
}

QString KGlobalAccelHotKeys::actionName(quint32 id)
{
    switch (id) {
    case 1:
        return QStringLiteral("show-search");
    case 2:
        return QStringLiteral("show-menu");
    default:
        return QStringLiteral("shortcut-%1").arg(id);
    }
}

QStringList KGlobalAccelHotKeys::actionId(quint32 id)
{
    return {QString::fromLatin1(component), actionName(id), QStringLiteral("Quillon"), friendlyName(id)};
}

int KGlobalAccelHotKeys::qtKey(quint32 keyCode, quint32 modifiers)
{
    int result = int(keyCode);
    for (const auto &[ours, qt] : modifierBits) {
        if (modifiers & ours)
            result |= int(qt);
    }
    return result;
}

std::optional<HotKeyCombination> KGlobalAccelHotKeys::fromQtKey(int key)
{
    const QKeyCombination combination = QKeyCombination::fromCombined(key);
    if (key == 0 || combination.key() == Qt::Key_unknown)
        return std::nullopt;
    return HotKeyCombination{quint32(combination.key()), hotKeyModifiers(combination.keyboardModifiers()),
                             describe(key)};
}

HotKeyGrab KGlobalAccelHotKeys::grab(quint32 keyCode, quint32 modifiers, quint32 id)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const HotKeyHandle handle = m_nextHandle++;
    const int key = qtKey(keyCode, modifiers);
    m_grabs.emplace(handle, Grab{id, key});

    // One connection delivers in order, so the action exists before its keys
    // are set. The default is what Reset in System Settings returns to.
    const QStringList action = actionId(id);
    m_bus.asyncCall(call("doRegister") << action);
    const QList<KdeKeySequence> keys{KdeKeySequence{{key, 0, 0, 0}}};
    m_bus.asyncCall(call("setShortcutKeys") << action << QVariant::fromValue(keys) << isDefault);
    auto *watcher = new QDBusPendingCallWatcher(
        m_bus.asyncCall(call("setShortcutKeys") << action << QVariant::fromValue(keys) << (setPresent | noAutoloading)),
        this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, handle](QDBusPendingCallWatcher *watcher) {
        watcher->deleteLater();
        keysSet(handle, watcher->reply());
    });
    return handle;
}

void KGlobalAccelHotKeys::release(HotKeyHandle handle)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const auto it = m_grabs.find(handle);
    if (it == m_grabs.end())
        return;
    // Gone from the daemon altogether: no dead entry in System Settings.
    m_bus.asyncCall(call("unregister") << QString::fromLatin1(component) << actionName(it->second.id));
    m_grabs.erase(it);
}

// The daemon answers with the keys the action now has: none when another
// component holds them.
void KGlobalAccelHotKeys::keysSet(HotKeyHandle handle, const QDBusMessage &reply)
{
    const auto it = m_grabs.find(handle);
    if (it == m_grabs.end())
        return;
    if (reply.type() != QDBusMessage::ReplyMessage) {
        qCWarning(lcHotKeys, "Plasma's shortcut daemon did not take Quillon's shortcut: %s",
                  qPrintable(reply.errorMessage()));
        if (m_available) {
            m_available = false;
            Q_EMIT availabilityChanged();
        }
        Q_EMIT refused(handle, HotKeyRefusal::Unavailable);
        return;
    }
    if (!m_available) {
        m_available = true;
        Q_EMIT availabilityChanged();
    }
    const int key = firstKey(reply.arguments().value(0).value<QDBusArgument>());
    if (key == 0) {
        qCWarning(lcHotKeys, "Plasma's shortcut daemon left %s without keys: %s is taken",
                  qPrintable(actionName(it->second.id)), qPrintable(describe(it->second.key)));
        Q_EMIT refused(handle, HotKeyRefusal::Taken);
        return;
    }
    watchComponent();
    const quint32 id = it->second.id;
    if (key != it->second.key) {
        it->second.key = key;
        Q_EMIT rebound(id, fromQtKey(key));
    }
    Q_EMIT bound(handle, describe(key));
}

// Presses arrive as signals of the component's own object.
void KGlobalAccelHotKeys::watchComponent()
{
    if (m_watchingComponent)
        return;
    m_watchingComponent = true;
    auto *watcher =
        new QDBusPendingCallWatcher(m_bus.asyncCall(call("getComponent") << QString::fromLatin1(component)), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *watcher) {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        const QString componentPath = reply.arguments().value(0).value<QDBusObjectPath>().path();
        if (reply.type() != QDBusMessage::ReplyMessage || componentPath.isEmpty()) {
            qCWarning(lcHotKeys, "Plasma's shortcut daemon has no component %s: %s", component,
                      qPrintable(reply.errorMessage()));
            m_watchingComponent = false;
            return;
        }
        m_bus.connect(QString::fromLatin1(service), componentPath, QString::fromLatin1(componentInterface),
                      QStringLiteral("globalShortcutPressed"), this,
                      SLOT(shortcutPressed(QString, QString, qlonglong)));
    });
}

void KGlobalAccelHotKeys::shortcutPressed(const QString &componentUnique, const QString &actionUnique, qlonglong)
{
    if (componentUnique != QLatin1String(component))
        return;
    for (const auto &[handle, grab] : m_grabs) {
        if (actionName(grab.id) == actionUnique) {
            Q_EMIT activated(grab.id);
            return;
        }
    }
}

// yourShortcutsChanged(as actionId, a(ai) keys) or the older
// yourShortcutGotChanged(as actionId, ai keys).
void KGlobalAccelHotKeys::shortcutsChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    const QStringList action = arguments.value(0).toStringList();
    if (arguments.size() < 2 || action.size() < 2 || action.at(0) != QLatin1String(component))
        return;
    int key = 0;
    const QDBusArgument keys = arguments.at(1).value<QDBusArgument>();
    if (message.member() == QLatin1String("yourShortcutsChanged")) {
        key = firstKey(keys);
    } else {
        QList<int> list;
        keys >> list;
        key = list.value(0);
    }
    for (auto &[handle, grab] : m_grabs) {
        if (actionName(grab.id) != action.at(1) || grab.key == key)
            continue;
        grab.key = key;
        const quint32 id = grab.id;
        if (key != 0)
            Q_EMIT bound(handle, describe(key));
        // Last: the receiver may release the handle when the keys are gone.
        Q_EMIT rebound(id, fromQtKey(key));
        return;
    }
}

QDBusMessage KGlobalAccelHotKeys::call(const char *method) const
{
    return QDBusMessage::createMethodCall(QString::fromLatin1(service), QString::fromLatin1(path),
                                          QString::fromLatin1(interface), QString::fromLatin1(method));
}
