#include "config/preferences.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/portal_hotkeys.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QTemporaryDir>
#include <QTest>

// One entry of the a(sa{sv}) the portal answers with.
struct PortalEntry {
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(PortalEntry)

QDBusArgument &operator<<(QDBusArgument &argument, const PortalEntry &entry)
{
    argument.beginStructure();
    argument << entry.id << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalEntry &entry)
{
    argument.beginStructure();
    argument >> entry.id >> entry.properties;
    argument.endStructure();
    return argument;
}

namespace {

const QString portalInterface = QString::fromLatin1(PortalHotKeys::interface);
constexpr quint32 ctrlAlt = HotKeyModifier::Ctrl | HotKeyModifier::Alt;

// A desktop portal with the GlobalShortcuts interface (or without it), on
// its own connection to the private session bus. It answers every request
// at once and keeps what it was asked.
class FakePortal final : public QDBusVirtualObject
{
public:
    struct Bound {
        QString session;
        QMap<QString, QVariantMap> shortcuts;
    };
    QList<QVariantMap> sessions;
    QList<Bound> binds;
    QStringList closed;
    // The shortcuts BindShortcuts answers with, described as "Press " and
    // the preferred trigger; all that were asked for unless set.
    std::optional<QStringList> grants;

    explicit FakePortal(bool hasGlobalShortcuts)
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal%1").arg(++s_count)))
        , m_hasGlobalShortcuts(hasGlobalShortcuts)
    {
        m_bus.registerVirtualObject(QString::fromLatin1(PortalHotKeys::path), this, QDBusConnection::SubPath);
        m_bus.registerService(QString::fromLatin1(PortalHotKeys::service));
    }
    ~FakePortal() override { QDBusConnection::disconnectFromBus(m_bus.name()); }

    void activate(const QString &session, const QString &id)
    {
        QDBusMessage signal = QDBusMessage::createSignal(QString::fromLatin1(PortalHotKeys::path), portalInterface,
                                                         QStringLiteral("Activated"));
        signal << QVariant::fromValue(QDBusObjectPath(session)) << id << qulonglong(1) << QVariantMap();
        m_bus.send(signal);
    }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        const QString member = message.member();
        QString sender = message.service().mid(1);
        sender.replace(u'.', u'_');
        if (member == QLatin1String("Get")) {
            if (!m_hasGlobalShortcuts || message.arguments().value(0).toString() != portalInterface)
                return m_bus.send(message.createErrorReply(QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"),
                                                           QStringLiteral("No such interface")));
            return m_bus.send(message.createReply(QVariant::fromValue(QDBusVariant(1u))));
        }
        if (member == QLatin1String("Close")) {
            closed.append(message.path());
            return m_bus.send(message.createReply());
        }
        QVariantMap options;
        QVariantMap results;
        if (member == QLatin1String("CreateSession")) {
            options = qdbus_cast<QVariantMap>(message.arguments().value(0));
            sessions.append(options);
            results.insert(QStringLiteral("session_handle"),
                           QStringLiteral("/org/freedesktop/portal/desktop/session/%1/%2")
                               .arg(sender, options.value(QStringLiteral("session_handle_token")).toString()));
        } else if (member == QLatin1String("BindShortcuts")) {
            Bound bound{message.arguments().value(0).value<QDBusObjectPath>().path(), {}};
            QList<PortalEntry> granted;
            for (const PortalEntry &entry : qdbus_cast<QList<PortalEntry>>(message.arguments().value(1))) {
                bound.shortcuts.insert(entry.id, entry.properties);
                if (grants && !grants->contains(entry.id))
                    continue;
                const QString trigger = entry.properties.value(QStringLiteral("preferred_trigger")).toString();
                granted.append(
                    {entry.id, {{QStringLiteral("trigger_description"), QStringLiteral("Press ") + trigger}}});
            }
            binds.append(bound);
            options = qdbus_cast<QVariantMap>(message.arguments().value(3));
            results.insert(QStringLiteral("shortcuts"), QVariant::fromValue(granted));
        } else {
            return false;
        }
        const QString request = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                                    .arg(sender, options.value(QStringLiteral("handle_token")).toString());
        m_bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        QDBusMessage response = QDBusMessage::createSignal(request, QStringLiteral("org.freedesktop.portal.Request"),
                                                           QStringLiteral("Response"));
        response << 0u << results;
        return m_bus.send(response);
    }

private:
    static inline int s_count = 0;
    QDBusConnection m_bus;
    bool m_hasGlobalShortcuts;
};

} // namespace

// The conversation with the GlobalShortcuts portal, over a private session
// bus (dbus-run-session) with a fake portal on it.
class TestHotKeysPortal : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Preferences> m_preferences;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDBusConnection::sessionBus().isConnected());
        qDBusRegisterMetaType<PortalEntry>();
        qDBusRegisterMetaType<QList<PortalEntry>>();
        m_preferences = std::make_unique<Preferences>(m_dir.filePath(QStringLiteral("Quillon.conf")));
    }

    void bindsEveryCombinationAndRunsTheActivatedOne()
    {
        FakePortal portal(true);
        PortalHotKeys backend;
        HotKeyCenters centers(*m_preferences, backend);
        int searches = 0;
        int menus = 0;
        centers.search().setAction([&searches] { ++searches; });
        centers.menu().setAction([&menus] { ++menus; });

        QVERIFY(centers.search().registerHotKey(Qt::Key_Space, ctrlAlt, QStringLiteral("Ctrl+Alt+Space")));
        QTRY_COMPARE(portal.binds.size(), 1);
        QCOMPARE(portal.sessions.at(0).value(QStringLiteral("session_handle_token")).toString(),
                 QStringLiteral("quillon"));
        QCOMPARE(portal.binds.at(0).shortcuts.keys(), QStringList{QStringLiteral("hotkey-1")});
        const QVariantMap search = portal.binds.at(0).shortcuts.value(QStringLiteral("hotkey-1"));
        QCOMPARE(search.value(QStringLiteral("preferred_trigger")).toString(), QStringLiteral("CTRL+ALT+space"));
        QVERIFY(!search.value(QStringLiteral("description")).toString().isEmpty());
        QTRY_COMPARE(centers.search().status(), HotKeyStatus(HotKeyBound{QStringLiteral("Press CTRL+ALT+space")}));

        // A session binds once: the next change binds both anew in a new one.
        QVERIFY(centers.menu().registerHotKey(Qt::Key_M, HotKeyModifier::Super, QStringLiteral("Super+M")));
        QTRY_COMPARE(portal.binds.size(), 2);
        QCOMPARE(portal.closed, QStringList{portal.binds.at(0).session});
        QCOMPARE(portal.binds.at(1).shortcuts.keys(),
                 (QStringList{QStringLiteral("hotkey-1"), QStringLiteral("hotkey-2")}));
        QCOMPARE(
            portal.binds.at(1).shortcuts.value(QStringLiteral("hotkey-2")).value(QStringLiteral("preferred_trigger")),
            QVariant(QStringLiteral("LOGO+m")));

        portal.activate(portal.binds.at(1).session, QStringLiteral("hotkey-2"));
        QTRY_COMPARE(menus, 1);
        QCOMPARE(searches, 0);
        // Nothing from another program's session.
        portal.activate(QStringLiteral("/org/freedesktop/portal/desktop/session/1_1/other"),
                        QStringLiteral("hotkey-1"));
        portal.activate(portal.binds.at(1).session, QStringLiteral("hotkey-1"));
        QTRY_COMPARE(searches, 1);
        QTest::qWait(100);
        QCOMPARE(searches, 1);

        // What the portal did not bind failed: it may bind only some, or
        // (Plasma 5.27, for a program without an application id) none while
        // answering "done".
        portal.grants = QStringList{QStringLiteral("hotkey-2")};
        QVERIFY(centers.search().registerHotKey(Qt::Key_K, ctrlAlt, QStringLiteral("Ctrl+Alt+K")));
        QTRY_COMPARE(centers.search().status(), HotKeyStatus(HotKeyRefusal::Unavailable));
        QVERIFY(centers.search().needsDesktopRoute());
        QCOMPARE(centers.menu().status(), HotKeyStatus(HotKeyBound{QStringLiteral("Press LOGO+m")}));
        portal.grants = QStringList{};
        QVERIFY(centers.menu().registerHotKey(Qt::Key_N, HotKeyModifier::Super, QStringLiteral("Super+N")));
        QTRY_COMPARE(centers.menu().status(), HotKeyStatus(HotKeyRefusal::Unavailable));

        centers.search().clear();
        centers.menu().clear();
    }

    void aPortalStartingLaterGetsTheCombination()
    {
        PortalHotKeys backend;
        HotKeyCenters centers(*m_preferences, backend);
        QTRY_VERIFY(!backend.isAvailable());
        // Nothing binds it yet, but it waits for a portal.
        QVERIFY(centers.search().registerHotKey(Qt::Key_F5, 0, QStringLiteral("F5")));
        QTRY_COMPARE(centers.search().status(), HotKeyStatus(HotKeyRefusal::Unavailable));
        auto portal = std::make_unique<FakePortal>(true);
        QTRY_COMPARE(portal->binds.size(), 1);
        QCOMPARE(
            portal->binds.at(0).shortcuts.value(QStringLiteral("hotkey-1")).value(QStringLiteral("preferred_trigger")),
            QVariant(QStringLiteral("F5")));
        QTRY_COMPARE(centers.search().status(), HotKeyStatus(HotKeyBound{QStringLiteral("Press F5")}));
        // A restarted portal knows nothing of the old session.
        portal.reset();
        portal = std::make_unique<FakePortal>(true);
        QTRY_COMPARE(portal->binds.size(), 1);
        centers.search().clear();
    }

    void aPortalWithoutGlobalShortcutsRefuses()
    {
        FakePortal portal(false);
        PortalHotKeys backend;
        HotKeyCenters centers(*m_preferences, backend);
        // Asked before the portal answered (GNOME before 48): pending, then refused.
        QVERIFY(centers.menu().registerHotKey(Qt::Key_M, ctrlAlt, {}));
        QCOMPARE(centers.menu().status(), HotKeyStatus(HotKeyPending{}));
        QTRY_COMPARE(centers.menu().status(), HotKeyStatus(HotKeyRefusal::Unavailable));
        QVERIFY(centers.menu().needsDesktopRoute());
        QVERIFY(!backend.isAvailable());
        QCOMPARE(centers.search().registerHotKey(Qt::Key_Space, ctrlAlt, {}),
                 HotKeyRegistration{HotKeyRefusal::Unavailable});
        QVERIFY(portal.binds.isEmpty());
        centers.menu().clear();
    }
};

QTEST_GUILESS_MAIN(TestHotKeysPortal)
#include "test_hotkeys_portal.moc"
