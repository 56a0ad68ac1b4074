#include "config/preferences.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/kglobalaccel_hotkeys.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QTemporaryDir>
#include <QTest>

// A key sequence as the daemon passes it: (ai), four chords.
struct DaemonKeys {
    QList<int> chords;
};
Q_DECLARE_METATYPE(DaemonKeys)

QDBusArgument &operator<<(QDBusArgument &argument, const DaemonKeys &keys)
{
    argument.beginStructure();
    argument << keys.chords;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DaemonKeys &keys)
{
    argument.beginStructure();
    argument >> keys.chords;
    argument.endStructure();
    return argument;
}

namespace {

constexpr quint32 ctrlAlt = HotKeyModifier::Ctrl | HotKeyModifier::Alt;
constexpr int ctrlAltSpace = (Qt::ControlModifier | Qt::AltModifier | Qt::Key_Space).toCombined();
const QString componentPath = QStringLiteral("/component/quillon");

// Plasma's shortcut daemon as far as Quillon uses it, on its own connection
// to the private session bus: it keeps actions and their keys, and refuses
// keys another component holds by leaving the action without keys.
class FakeDaemon final : public QDBusVirtualObject
{
public:
    struct Action {
        QStringList id;
        int key = 0;
        int defaultKey = 0;
    };
    QMap<QString, Action> actions;
    QList<int> heldElsewhere;

    FakeDaemon()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("daemon")))
    {
        m_bus.registerVirtualObject(QString::fromLatin1(KGlobalAccelHotKeys::path), this);
        m_bus.registerVirtualObject(componentPath, this);
        m_bus.registerService(QString::fromLatin1(KGlobalAccelHotKeys::service));
    }
    ~FakeDaemon() override
    {
        m_bus.unregisterService(QString::fromLatin1(KGlobalAccelHotKeys::service));
        QDBusConnection::disconnectFromBus(m_bus.name());
    }

    void press(const QString &action)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(componentPath, QString::fromLatin1(KGlobalAccelHotKeys::componentInterface),
                                       QStringLiteral("globalShortcutPressed"));
        signal << QStringLiteral("quillon") << action << qlonglong(1);
        m_bus.send(signal);
    }

    // What System Settings does when the user picks other keys.
    void changeInSettings(const QString &action, int key)
    {
        actions[action].key = key;
        QDBusMessage signal = QDBusMessage::createSignal(QString::fromLatin1(KGlobalAccelHotKeys::path),
                                                         QString::fromLatin1(KGlobalAccelHotKeys::interface),
                                                         QStringLiteral("yourShortcutsChanged"));
        signal << actions[action].id << QVariant::fromValue(QList<DaemonKeys>{{{key, 0, 0, 0}}});
        m_bus.send(signal);
    }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        const QString member = message.member();
        const QVariantList arguments = message.arguments();
        if (member == QLatin1String("doRegister")) {
            const QStringList id = arguments.value(0).toStringList();
            actions[id.value(1)].id = id;
            return m_bus.send(message.createReply());
        }
        if (member == QLatin1String("setShortcutKeys")) {
            const QStringList id = arguments.value(0).toStringList();
            QList<DaemonKeys> keys;
            arguments.value(1).value<QDBusArgument>() >> keys;
            const int key = keys.isEmpty() ? 0 : keys.first().chords.value(0);
            Action &action = actions[id.value(1)];
            if (arguments.value(2).toUInt() & 8)
                action.defaultKey = key;
            else
                action.key = heldElsewhere.contains(key) ? 0 : key;
            const QList<DaemonKeys> now =
                action.key == 0 ? QList<DaemonKeys>{} : QList<DaemonKeys>{{{action.key, 0, 0, 0}}};
            return m_bus.send(message.createReply(QVariant::fromValue(now)));
        }
        if (member == QLatin1String("unregister")) {
            const bool known = actions.remove(arguments.value(1).toString()) > 0;
            return m_bus.send(message.createReply(known));
        }
        if (member == QLatin1String("getComponent"))
            return m_bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(componentPath))));
        return false;
    }

private:
    QDBusConnection m_bus;
};

} // namespace

// Registration with Plasma's shortcut daemon, over a private session bus
// (dbus-run-session) with a fake daemon on it.
class TestHotKeysKGlobalAccel : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Preferences> m_preferences;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDBusConnection::sessionBus().isConnected());
        qDBusRegisterMetaType<DaemonKeys>();
        qDBusRegisterMetaType<QList<DaemonKeys>>();
        m_preferences = std::make_unique<Preferences>(m_dir.filePath(QStringLiteral("Quillon.conf")));
    }

    void registersTheComponentAndRunsThePressedAction()
    {
        FakeDaemon daemon;
        daemon.heldElsewhere = {(Qt::ControlModifier | Qt::AltModifier | Qt::Key_T).toCombined()};
        KGlobalAccelHotKeys backend;
        HotKeyCenters centers(*m_preferences, backend);
        int searches = 0;
        int menus = 0;
        centers.search().setAction([&searches] { ++searches; });
        centers.menu().setAction([&menus] { ++menus; });

        // Keys another component holds are refused.
        QVERIFY(centers.search().registerHotKey(Qt::Key_T, ctrlAlt, QStringLiteral("Ctrl+Alt+T")));
        QTRY_COMPARE(centers.search().status(), HotKeyStatus(HotKeyRefusal::Taken));

        QVERIFY(centers.search().registerHotKey(Qt::Key_Space, ctrlAlt, QStringLiteral("Ctrl+Alt+Space")));
        QVERIFY(centers.menu().registerHotKey(Qt::Key_M, HotKeyModifier::Super, QStringLiteral("Super+M")));
        QCOMPARE(centers.search().status(), HotKeyStatus(HotKeyPending{}));
        QTRY_COMPARE(centers.search().status(), HotKeyStatus(HotKeyBound{QStringLiteral("Ctrl+Alt+Space")}));
        QTRY_COMPARE(centers.menu().status(), HotKeyStatus(HotKeyBound{QStringLiteral("Meta+M")}));

        // Named for System Settings, with the chosen keys as the default too.
        const FakeDaemon::Action search = daemon.actions.value(QStringLiteral("show-search"));
        QCOMPARE(search.id.value(0), QStringLiteral("quillon"));
        QCOMPARE(search.id.value(2), QStringLiteral("Quillon"));
        QVERIFY(!search.id.value(3).isEmpty());
        QCOMPARE(search.key, ctrlAltSpace);
        QCOMPARE(search.defaultKey, ctrlAltSpace);
        QCOMPARE(daemon.actions.value(QStringLiteral("show-menu")).key, (Qt::MetaModifier | Qt::Key_M).toCombined());

        daemon.press(QStringLiteral("show-menu"));
        QTRY_COMPARE(menus, 1);
        QCOMPARE(searches, 0);
        daemon.press(QStringLiteral("show-search"));
        QTRY_COMPARE(searches, 1);

        // Keys changed in System Settings become the saved ones.
        daemon.changeInSettings(QStringLiteral("show-search"), (Qt::MetaModifier | Qt::Key_F3).toCombined());
        QTRY_COMPARE(centers.search().current(),
                     (HotKeyCombination{Qt::Key_F3, HotKeyModifier::Super, QStringLiteral("Meta+F3")}));
        QCOMPARE(Preferences(m_dir.filePath(QStringLiteral("Quillon.conf"))).value(QStringLiteral("HotKeyKeyCode")),
                 QVariant(int(Qt::Key_F3)));

        // Cleared: gone from the daemon, so no dead entry in System Settings.
        centers.menu().clear();
        QTRY_VERIFY(!daemon.actions.contains(QStringLiteral("show-menu")));
        centers.search().clear();
    }

    void noDaemonMeansUnavailable()
    {
        KGlobalAccelHotKeys backend;
        HotKeyCenters centers(*m_preferences, backend);
        QVERIFY(centers.search().registerHotKey(Qt::Key_F5, 0, QStringLiteral("F5")));
        QTRY_COMPARE(centers.search().status(), HotKeyStatus(HotKeyRefusal::Unavailable));
        QVERIFY(!backend.isAvailable());
        QVERIFY(centers.search().needsDesktopRoute());
        centers.search().clear();
    }
};

QTEST_GUILESS_MAIN(TestHotKeysKGlobalAccel)
#include "test_hotkeys_kglobalaccel.moc"
