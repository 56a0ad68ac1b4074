#include "platform/dbusmenuexporter.h"
#include "platform/sni_tray.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWidgetAction>

// The panel's side of the conversation: a second connection to the same
// bus, which calls Quillon's objects and hears their signals as a tray host
// would.
class FakeHost : public QObject
{
    Q_OBJECT

public:
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("host"));
    QList<QPair<uint, int>> layoutUpdates;
    QList<DBusMenuItemList> propertyUpdates;
    QList<DBusMenuItemKeysList> propertyRemovals;

    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments = {})
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(QDBusConnection::sessionBus().baseService(), path, interface, method);
        message.setArguments(arguments);
        // The exporter lives on this thread: wait with the event loop running.
        return bus.call(message, QDBus::BlockWithGui);
    }

    QDBusMessage menu(const QString &method, const QVariantList &arguments = {})
    {
        return call(QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"), method, arguments);
    }

    QDBusMessage event(int id, const QString &name)
    {
        return menu(QStringLiteral("Event"), {id, name, QVariant::fromValue(QDBusVariant(0)), 0u});
    }

    bool aboutToShow(int id) { return QDBusReply<bool>(menu(QStringLiteral("AboutToShow"), {id})).value(); }

    DBusMenuLayoutItem layout(int parent = 0, int depth = -1)
    {
        const QDBusMessage reply = menu(QStringLiteral("GetLayout"), {parent, depth, QStringList()});
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 2)
            return {};
        return qdbus_cast<DBusMenuLayoutItem>(reply.arguments().at(1).value<QDBusArgument>());
    }

    void listen()
    {
        const QString sender = QDBusConnection::sessionBus().baseService();
        bus.connect(sender, QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"),
                    QStringLiteral("LayoutUpdated"), this, SLOT(layoutUpdated(uint, int)));
        bus.connect(sender, QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"),
                    QStringLiteral("ItemsPropertiesUpdated"), this,
                    SLOT(itemsPropertiesUpdated(DBusMenuItemList, DBusMenuItemKeysList)));
    }

public Q_SLOTS:
    void layoutUpdated(uint revision, int parent) { layoutUpdates.append({revision, parent}); }
    void itemsPropertiesUpdated(const DBusMenuItemList &updated, const DBusMenuItemKeysList &removed)
    {
        propertyUpdates.append(updated);
        propertyRemovals.append(removed);
    }
};

// The watcher panels run, reduced to remembering who registered.
class FakeWatcher : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")

public:
    QStringList items;

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service) { items.append(service); }
};

namespace {

QStringList labels(const DBusMenuLayoutItem &item)
{
    QStringList result;
    for (const auto &child : item.children) {
        const QVariantMap &p = child.properties;
        result << (p.value(QStringLiteral("type")).toString() == QLatin1String("separator")
                       ? QStringLiteral("---")
                       : p.value(QStringLiteral("label")).toString());
    }
    return result;
}

const DBusMenuLayoutItem *child(const DBusMenuLayoutItem &item, const QString &label)
{
    for (const auto &c : item.children) {
        if (c.properties.value(QStringLiteral("label")).toString() == label)
            return &c;
    }
    return nullptr;
}

QPixmap square(Qt::GlobalColor color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return pixmap;
}

} // namespace

class TestTrayItem : public QObject
{
    Q_OBJECT

    QTemporaryDir m_themes;

private Q_SLOTS:
    void initTestCase()
    {
        if (!QDBusConnection::sessionBus().isConnected())
            QSKIP("needs a session bus (run under dbus-run-session)");
        registerDBusMenuTypes();
        // A theme of one icon, so a named icon can be told from a drawn one.
        QDir(m_themes.path()).mkpath(QStringLiteral("test/16x16/apps"));
        QFile index(m_themes.filePath(QStringLiteral("test/index.theme")));
        QVERIFY(index.open(QIODevice::WriteOnly));
        index.write("[Icon Theme]\nName=test\nDirectories=16x16/apps\n[16x16/apps]\nSize=16\n");
        index.close();
        QVERIFY(square(Qt::blue).save(m_themes.filePath(QStringLiteral("test/16x16/apps/quillon-test.png"))));
        QIcon::setThemeSearchPaths({m_themes.path()});
        QIcon::setThemeName(QStringLiteral("test"));
    }

    // What the panel is given to draw: every kind of item in its DBusMenu form.
    void theLayoutDescribesEveryKindOfItem()
    {
        QMenu menu;
        auto *field = new QWidgetAction(&menu);
        field->setDefaultWidget(new QWidget);
        menu.addAction(field);
        QAction *search = menu.addAction(QStringLiteral("Search…"));
        search->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Space));
        menu.addSeparator();
        menu.addAction(QIcon::fromTheme(QStringLiteral("quillon-test")), QStringLiteral("Mouse && Touchpad"));
        menu.addAction(QIcon(square(Qt::red)), QStringLiteral("my_file.txt"))->setEnabled(false);
        QMenu *apps = menu.addMenu(QStringLiteral("&Applications"));
        apps->addAction(QStringLiteral("Firefox"));
        menu.addSection(QStringLiteral("Recents"));
        menu.addAction(QStringLiteral("Quit"));

        DBusMenuExporter exporter(&menu);
        QVERIFY(exporter.publish(QDBusConnection::sessionBus(), QStringLiteral("/MenuBar")));
        FakeHost host;
        const DBusMenuLayoutItem root = host.layout();
        QCOMPARE(root.id, 0);
        // The field has no DBusMenu form; a section is a separator and its title.
        QCOMPARE(labels(root),
                 QStringList({QStringLiteral("Search…"), QStringLiteral("---"), QStringLiteral("Mouse & Touchpad"),
                              QStringLiteral("my__file.txt"), QStringLiteral("_Applications"), QStringLiteral("---"),
                              QStringLiteral("Recents"), QStringLiteral("Quit")}));

        const QVariantMap searchItem = child(root, QStringLiteral("Search…"))->properties;
        const auto keys =
            qdbus_cast<DBusMenuShortcut>(searchItem.value(QStringLiteral("shortcut")).value<QDBusArgument>());
        QCOMPARE(keys, DBusMenuShortcut({{QStringLiteral("Control"), QStringLiteral("Alt"), QStringLiteral("space")}}));

        const QVariantMap named = child(root, QStringLiteral("Mouse & Touchpad"))->properties;
        QCOMPARE(named.value(QStringLiteral("icon-name")).toString(), QStringLiteral("quillon-test"));
        QVERIFY(!named.contains(QStringLiteral("icon-data")));
        QVERIFY(!named.contains(QStringLiteral("enabled"))); // enabled is the default

        const QVariantMap drawn = child(root, QStringLiteral("my__file.txt"))->properties;
        QImage image;
        QVERIFY(image.loadFromData(drawn.value(QStringLiteral("icon-data")).toByteArray(), "PNG"));
        QCOMPARE(image.pixelColor(4, 4), QColor(Qt::red));
        QCOMPARE(drawn.value(QStringLiteral("enabled")), QVariant(false));

        const DBusMenuLayoutItem *submenu = child(root, QStringLiteral("_Applications"));
        QCOMPARE(submenu->properties.value(QStringLiteral("children-display")).toString(), QStringLiteral("submenu"));
        QCOMPARE(labels(*submenu), QStringList{QStringLiteral("Firefox")});
        QCOMPARE(child(root, QStringLiteral("Recents"))->properties.value(QStringLiteral("enabled")), QVariant(false));

        // Depth 0: the item alone; a submenu's own id gives just its part.
        QVERIFY(host.layout(0, 0).children.isEmpty());
        QCOMPARE(labels(host.layout(submenu->id)), QStringList{QStringLiteral("Firefox")});
        // Group properties, filtered by name, and unknown ids.
        const QDBusMessage group =
            host.menu(QStringLiteral("GetGroupProperties"),
                      {QVariant::fromValue(QList<int>{submenu->id, 9999}), QStringList{QStringLiteral("label")}});
        const auto items = qdbus_cast<DBusMenuItemList>(group.arguments().at(0).value<QDBusArgument>());
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.first().properties, QVariantMap({{QStringLiteral("label"), QStringLiteral("_Applications")}}));
        QCOMPARE(host.layout(9999).id, 0);
        QCOMPARE(host.menu(QStringLiteral("GetLayout"), {9999, -1, QStringList()}).type(), QDBusMessage::ErrorMessage);
        QDBusConnection::sessionBus().unregisterObject(QStringLiteral("/MenuBar"));
    }

    // The root rebuilds and submenus fill only when the panel is about to
    // show them; each change is announced, and clicks reach the actions.
    void showingFillsLazilyAndClicksOpen()
    {
        QMenu menu;
        int rebuilds = 0;
        int fills = 0;
        QStringList opened;
        QMenu *folder = nullptr;
        connect(&menu, &QMenu::aboutToShow, &menu, [&] {
            ++rebuilds;
            menu.clear();
            folder = menu.addMenu(QStringLiteral("Documents"));
            connect(folder, &QMenu::aboutToShow, folder, [&, folder] {
                if (!folder->actions().isEmpty())
                    return;
                ++fills;
                for (const QString &name : {QStringLiteral("a.txt"), QStringLiteral("b.txt")})
                    connect(folder->addAction(name), &QAction::triggered, folder, [&opened, name] { opened << name; });
            });
            QAction *off = menu.addAction(QStringLiteral("Unavailable"));
            off->setEnabled(false);
            connect(off, &QAction::triggered, &menu, [&opened] { opened << QStringLiteral("unavailable"); });
        });
        QSignalSpy hidden(&menu, &QMenu::aboutToHide);

        DBusMenuExporter exporter(&menu);
        QVERIFY(exporter.publish(QDBusConnection::sessionBus(), QStringLiteral("/MenuBar")));
        FakeHost host;
        host.listen();
        QVERIFY(labels(host.layout()).isEmpty());

        QVERIFY(host.aboutToShow(0));
        QCOMPARE(rebuilds, 1);
        QTRY_VERIFY(!host.layoutUpdates.isEmpty());
        QCOMPARE(host.layoutUpdates.last().second, 0);
        const uint revision = host.layoutUpdates.last().first;
        DBusMenuLayoutItem root = host.layout();
        QCOMPARE(labels(root), QStringList({QStringLiteral("Documents"), QStringLiteral("Unavailable")}));
        // Unfilled until asked for, yet not empty: panels open no empty submenu.
        const int folderId = child(root, QStringLiteral("Documents"))->id;
        QCOMPARE(labels(*child(root, QStringLiteral("Documents"))), QStringList{QStringLiteral("…")});
        QCOMPARE(child(root, QStringLiteral("Documents"))->children.first().properties.value(QStringLiteral("enabled")),
                 QVariant(false));
        QCOMPARE(fills, 0);

        host.layoutUpdates.clear();
        QDBusMessage group =
            host.menu(QStringLiteral("AboutToShowGroup"), {QVariant::fromValue(QList<int>{folderId, 4242})});
        QCOMPARE(qdbus_cast<QList<int>>(group.arguments().at(0).value<QDBusArgument>()), QList<int>{folderId});
        QCOMPARE(qdbus_cast<QList<int>>(group.arguments().at(1).value<QDBusArgument>()), QList<int>{4242});
        QCOMPARE(fills, 1);
        QTRY_COMPARE(host.layoutUpdates.size(), 1);
        QCOMPARE(host.layoutUpdates.first().second, folderId);
        QVERIFY(host.layoutUpdates.first().first > revision);
        // Shown again: nothing new to fetch.
        QVERIFY(!host.aboutToShow(folderId));
        QCOMPARE(fills, 1);

        root = host.layout();
        const DBusMenuLayoutItem *filled = child(root, QStringLiteral("Documents"));
        QCOMPARE(labels(*filled), QStringList({QStringLiteral("a.txt"), QStringLiteral("b.txt")}));

        // A click opens its item once; a disabled item and a submenu open nothing.
        host.event(filled->children.at(1).id, QStringLiteral("clicked"));
        host.event(child(root, QStringLiteral("Unavailable"))->id, QStringLiteral("clicked"));
        host.event(folderId, QStringLiteral("clicked"));
        QTRY_COMPARE(opened, QStringList{QStringLiteral("b.txt")});
        QTest::qWait(20);
        QCOMPARE(opened, QStringList{QStringLiteral("b.txt")});
        QCOMPARE(host.event(777, QStringLiteral("clicked")).type(), QDBusMessage::ErrorMessage);

        // A property change is announced with the item's new properties.
        QAction *unavailable = menu.actions().at(1);
        unavailable->setEnabled(true);
        unavailable->setText(QStringLiteral("Available"));
        QTRY_VERIFY(!host.propertyUpdates.isEmpty());
        const DBusMenuItem update = host.propertyUpdates.last().first();
        QCOMPARE(update.id, child(root, QStringLiteral("Unavailable"))->id);
        QCOMPARE(update.properties.value(QStringLiteral("enabled")), QVariant(true));
        QCOMPARE(update.properties.value(QStringLiteral("label")).toString(), QStringLiteral("Available"));
        QVERIFY(host.propertyRemovals.last().first().properties.contains(QStringLiteral("icon-data")));

        // The panel closing the menu is the menu hiding.
        host.event(0, QStringLiteral("closed"));
        QCOMPARE(hidden.count(), 1);
        // Opening again rebuilds: new items, new ids, the old ones unknown.
        QVERIFY(host.aboutToShow(0));
        QCOMPARE(rebuilds, 2);
        QVERIFY(child(host.layout(), QStringLiteral("Documents"))->id != folderId);
        QDBusConnection::sessionBus().unregisterObject(QStringLiteral("/MenuBar"));
    }

    void labelsAndShortcutsInDBusMenuSpelling()
    {
        QCOMPARE(DBusMenuExporter::label(QStringLiteral("&Open && Save_as")), QStringLiteral("_Open & Save__as"));
        QCOMPARE(DBusMenuExporter::label(QStringLiteral("Trailing&")), QStringLiteral("Trailing"));
        QCOMPARE(DBusMenuExporter::shortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma)),
                 DBusMenuShortcut({{QStringLiteral("Control"), QStringLiteral("comma")}}));
        QCOMPARE(DBusMenuExporter::shortcut(QKeySequence(Qt::META | Qt::SHIFT | Qt::Key_Q)),
                 DBusMenuShortcut({{QStringLiteral("Shift"), QStringLiteral("Super"), QStringLiteral("q")}}));
        QCOMPARE(DBusMenuExporter::shortcut(QKeySequence(Qt::Key_F5)), DBusMenuShortcut({{QStringLiteral("F5")}}));
    }

    // The item a panel finds through the watcher: a menu at /MenuBar, and
    // clicks that tell where they were.
    void theItemRegistersAndReportsClicks()
    {
        FakeHost host;
        FakeWatcher watcher;
        QVERIFY(host.bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                                        QDBusConnection::ExportAllSlots));
        QVERIFY(host.bus.registerService(QLatin1String(SniTray::watcherService)));

        QMenu menu;
        menu.addAction(QStringLiteral("Quit"));
        SniTray tray(SniTray::MenuMode::Exported);
        QCOMPARE(tray.kind(), TrayKind::Exported);
        tray.exportMenu(&menu);
        tray.show({QIcon(square(Qt::green)), QStringLiteral("quillon-symbolic"), QStringLiteral("/opt/q/share/icons")},
                  QStringLiteral("Quillon"));
        QTRY_COMPARE(watcher.items, QStringList{QDBusConnection::sessionBus().baseService()});
        QVERIFY(tray.serviceName().startsWith(QLatin1String("org.kde.StatusNotifierItem-")));

        const auto property = [&](const char *name) {
            const QDBusMessage reply =
                host.call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.freedesktop.DBus.Properties"),
                          QStringLiteral("Get"), {QStringLiteral("org.kde.StatusNotifierItem"), QLatin1String(name)});
            return reply.arguments().value(0).value<QDBusVariant>().variant();
        };
        QCOMPARE(property("ItemIsMenu"), QVariant(true));
        QCOMPARE(property("Menu").value<QDBusObjectPath>().path(), QStringLiteral("/MenuBar"));
        QCOMPARE(property("Id").toString(), QStringLiteral("Quillon"));
        QCOMPARE(property("Status").toString(), QStringLiteral("Active"));
        QCOMPARE(property("IconName").toString(), QStringLiteral("quillon-symbolic"));
        QCOMPARE(property("IconThemePath").toString(), QStringLiteral("/opt/q/share/icons"));
        // The icon as ARGB32 images in network byte order, smallest first. All
        // are read: an array left open leaks its demarshaller.
        QList<std::pair<QSize, QByteArray>> images;
        const QDBusArgument pixmaps = property("IconPixmap").value<QDBusArgument>();
        pixmaps.beginArray();
        while (!pixmaps.atEnd()) {
            std::pair<QSize, QByteArray> image;
            pixmaps.beginStructure();
            pixmaps >> image.first.rwidth() >> image.first.rheight() >> image.second;
            pixmaps.endStructure();
            images.append(image);
        }
        pixmaps.endArray();
        QVERIFY(!images.isEmpty());
        QCOMPARE(images.first().first, QSize(16, 16));
        QCOMPARE(images.first().second.left(4), QByteArray::fromHex("ff00ff00"));
        QCOMPARE(labels(host.layout()), QStringList{QStringLiteral("Quit")});

        QSignalSpy activated(&tray, &Tray::activated);
        QSignalSpy middle(&tray, &Tray::secondaryActivated);
        QVERIFY(!tray.iconGeometry());
        host.call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.kde.StatusNotifierItem"),
                  QStringLiteral("Activate"), {1250, 14});
        QCOMPARE(activated.count(), 1);
        QCOMPARE(activated.first().first().value<std::optional<QPoint>>(), std::optional(QPoint(1250, 14)));
        QCOMPARE(tray.iconGeometry()->topLeft(), QPoint(1250, 14));
        host.call(QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.kde.StatusNotifierItem"),
                  QStringLiteral("SecondaryActivate"), {0, 0});
        QCOMPARE(middle.count(), 1);
        // A panel that does not know sends the origin: the last real place stands.
        QCOMPARE(tray.iconGeometry()->topLeft(), QPoint(1250, 14));

        // The session's choice: a watcher on Wayland means the exported menu,
        // no watcher means no tray at all. QUILLON_TRAY overrides it, unless
        // it names no tray.
        qputenv("WAYLAND_DISPLAY", "wayland-test");
        QCOMPARE(Tray::forSession()->kind(), TrayKind::Exported);
        host.bus.unregisterService(QLatin1String(SniTray::watcherService));
        QCOMPARE(Tray::forSession()->kind(), TrayKind::Absent);
        qputenv("QUILLON_TRAY", "sni-popup");
        QCOMPARE(Tray::forSession()->kind(), TrayKind::PopUp);
        qputenv("QUILLON_TRAY", "no-such-tray");
        QTest::ignoreMessage(QtWarningMsg, "QUILLON_TRAY names no tray: \"no-such-tray\"");
        QCOMPARE(Tray::forSession()->kind(), TrayKind::Absent);
        qunsetenv("QUILLON_TRAY");
        qunsetenv("WAYLAND_DISPLAY");
    }
};

QTEST_MAIN(TestTrayItem)
#include "test_trayitem.moc"
