#include "app/aboutwindow.h"
#include "app/lazymenu.h"
#include "app/menuicon.h"
#include "app/menuprinter.h"
#include "app/notraynotice.h"
#include "app/statusmenu.h"
#include "app/statusmenucontroller.h"
#include "app/updates.h"
#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "fakelauncher.h"
#include "faketray.h"
#include "feedserver.h"
#include "fixtures.h"
#include "platform/dbusmenuexporter.h"
#include "platform/opener.h"
#include "platform/systemrelease.h"
#include "sources/shortcutlibrary.h"

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>
#include <QWidgetAction>

namespace {

QStringList lines(const QString &text)
{
    return text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QAction *item(const QMenu *menu, const QString &text)
{
    for (QAction *action : menu->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

} // namespace

class TestStatusMenu : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    TestCatalog m_settings;
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<MenuStore> m_store;
    std::unique_ptr<Updates> m_updates;
    std::unique_ptr<ShortcutLibrary> m_shortcuts;
    FakeLauncher m_launcher;
    std::unique_ptr<Opener> m_opener;
    std::unique_ptr<StatusMenu> m_menu;

    // The real application scan, over the test's own data folders.
    const ContentSources &sources()
    {
        return m_settings.sources(*m_store, *m_shortcuts, [] { return AppLibrary::scan(); });
    }

    QStringList shown(int depth = 1) { return lines(menuText(m_menu->menu(), depth)); }

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("XDG_DATA_HOME", m_dir.filePath(QStringLiteral("data")).toUtf8());
        qputenv("XDG_DATA_DIRS", m_dir.filePath(QStringLiteral("none")).toUtf8());
        // Privacy is in no section: only a custom menu shows it.
        m_settings.set({{QStringLiteral("wifi"), QStringLiteral("bluetooth")}},
                       {testPane(QStringLiteral("wifi"), QStringLiteral("Wi-Fi")),
                        testPane(QStringLiteral("bluetooth"), QStringLiteral("Bluetooth")),
                        testPane(QStringLiteral("privacy"), QStringLiteral("Privacy"), {},
                                 QList<QList<QString>>{{QStringLiteral("camera")}}),
                        testPane(QStringLiteral("camera"), QStringLiteral("Camera"))});
        m_shortcuts = std::make_unique<ShortcutLibrary>(m_dir.filePath(QStringLiteral("no-tool")));
        m_opener = std::make_unique<Opener>(m_launcher, [](const QString &) {});
    }

    void init()
    {
        m_menu.reset();
        m_store.reset();
        m_preferences =
            std::make_unique<Preferences>(m_dir.filePath(QStringLiteral("%1.conf").arg(QTest::currentTestFunction())));
        m_store = std::make_unique<MenuStore>(*m_preferences);
        m_updates = std::make_unique<Updates>(*m_preferences, QUrl(), QStringLiteral("1.0"));
        m_launcher.calls.clear();
        StatusMenu::Services services{sources(), *m_shortcuts, *m_preferences, *m_updates, *m_opener};
        m_menu = std::make_unique<StatusMenu>(services, [] {});
    }

    void theDefaultMenu()
    {
        m_menu->rebuild();
        const QStringList items = shown();
        QCOMPARE(items.first(), QStringLiteral("(search field)"));
        QCOMPARE(items.at(1), QStringLiteral("---"));
        QVERIFY(items.at(2).startsWith(QStringLiteral("Applications")));
        QVERIFY(items.at(3).startsWith(QStringLiteral("System Settings")));
        // No feed in this build: no update item.
        QCOMPARE(items.mid(items.size() - 5),
                 (QStringList{"About Quillon", "Send Feedback…", "Settings…", "---", "Quit Quillon"}));
        QCOMPARE(m_menu->menu()->actions().last()->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));

        m_preferences->setValue(QStringLiteral("ShowSearch"), false);
        m_menu->rebuild();
        QVERIFY(shown().first().startsWith(QStringLiteral("Applications")));
    }

    void separatorsAndEmptyLayouts()
    {
        const auto layout = m_store->layout();
        for (const auto &entry : layout)
            m_store->setStyle(SourceStyle::Hidden, entry.source);
        m_menu->rebuild();
        QCOMPARE(shown().mid(2, 2), (QStringList{"No Items  (disabled)", "---"}));

        // Separators at the start, twice in a row and at the end show as one.
        m_store->addSeparator();
        m_store->addSeparator();
        m_store->setStyle(SourceStyle::Submenu, MenuSource::systemSettings());
        m_store->addSeparator();
        m_store->addSeparator();
        m_store->move({MenuSource::systemSettings()}, MenuSource::separator(m_store->separators().at(2)));
        m_menu->rebuild();
        const QStringList items = shown();
        QVERIFY2(items.at(2).startsWith(QStringLiteral("System Settings")), qPrintable(items.join(QLatin1Char('\n'))));
        QCOMPARE(items.at(3), QStringLiteral("---"));
        QVERIFY(items.at(4).startsWith(QStringLiteral("About")));
    }

    void inlineSourcesAndUnavailableOnes()
    {
        m_store->setStyle(SourceStyle::Inline, MenuSource::systemSettings());
        m_store->recordRecent(QUrl(QStringLiteral("settings://gnome/bluetooth")));
        m_store->setStyle(SourceStyle::Inline, MenuSource::recents());
        // A place whose pane is not picked stands under its pane's header,
        // spread inline as in a submenu.
        const CustomMenu places = m_store->addMenu(QStringLiteral("Places"));
        m_store->setIncluded(true, QUrl(QStringLiteral("settings://gnome/camera")), places.id);
        m_store->setStyle(SourceStyle::Inline, MenuSource::customMenu(places.id));
        m_store->addFolder(QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("vanished/"))));
        m_menu->rebuild();
        const QString text = menuText(m_menu->menu(), 1);
        QVERIFY2(text.contains(
                     QStringLiteral("\nWi-Fi  <settings://gnome/wifi>\nBluetooth  <settings://gnome/bluetooth>\n")),
                 qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("\nBluetooth  <settings://gnome/bluetooth>\n---\nClear Menu\n")));
        QVERIFY(text.contains(QStringLiteral("\nClear Menu\n---\n[Privacy]\nCamera  <settings://gnome/camera>\n")));
        QVERIFY(text.contains(QStringLiteral("vanished  (disabled)  ▸")));

        // The warning symbol is read out too.
        const qsizetype vanished = m_menu->menu()->actions().indexOf(item(m_menu->menu(), QStringLiteral("vanished")));
        QVERIFY(vanished >= 0);
        QAccessibleInterface *read = QAccessible::queryAccessibleInterface(m_menu->menu())->child(int(vanished));
        QVERIFY(read);
        QCOMPARE(read->text(QAccessible::Name), QStringLiteral("vanished"));
        QCOMPARE(read->text(QAccessible::Description), QStringLiteral("Not Available"));
        QVERIFY(read->state().disabled);
    }

    // A custom menu's symbol, in its colour; a folder when the theme has
    // neither the symbol nor a folder (off screen there is no theme at all).
    void customMenusShowTheirSymbol_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QString>("symbol");
        QTest::newRow("the theme's symbol") << "quillon-test"
                                            << "starred-symbolic";
        QTest::newRow("a symbol the theme lacks") << "quillon-test"
                                                  << "no-such-symbol";
        QTest::newRow("no theme") << ""
                                  << "starred-symbolic";
    }

    void customMenusShowTheirSymbol()
    {
        QFETCH(QString, theme);
        QFETCH(QString, symbol);
        QTemporaryDir icons;
        QDir(icons.path()).mkpath(QStringLiteral("quillon-test/scalable"));
        QFile index(icons.filePath(QStringLiteral("quillon-test/index.theme")));
        QVERIFY(index.open(QIODevice::WriteOnly));
        index.write("[Icon Theme]\nName=Test\nDirectories=scalable\n[scalable]\nSize=16\nType=Scalable\n");
        index.close();
        QFile star(icons.filePath(QStringLiteral("quillon-test/scalable/starred-symbolic.svg")));
        QVERIFY(star.open(QIODevice::WriteOnly));
        star.write("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"16\" height=\"16\">"
                   "<path d=\"M8 1l2 5h5l-4 3 2 6-5-4-5 4 2-6-4-3h5z\"/></svg>");
        star.close();
        const QStringList paths = QIcon::themeSearchPaths();
        const QString name = QIcon::themeName();
        const auto restore = qScopeGuard([&] {
            QIcon::setThemeSearchPaths(paths);
            QIcon::setThemeName(name);
        });
        QIcon::setThemeSearchPaths({icons.path()});
        QIcon::setThemeName(theme);

        QTest::failOnWarning(QRegularExpression(QStringLiteral("QPainter")));
        // Rows share a preferences file: each menu has a name of its own.
        const QString title = QString::fromUtf8(QTest::currentDataTag());
        const CustomMenu menu = m_store->addMenu(title);
        m_store->setSymbol(menu.id, symbol);
        m_store->setColor(menu.id, FolderColor::Red);
        m_menu->rebuild();
        const QAction *custom = item(m_menu->menu(), title);
        QVERIFY(custom);
        const QImage image = custom->icon().pixmap(QSize(16, 16), 1.0).toImage();
        QVERIFY(!image.isNull());
        // Drawn in red; the star leaves the corner empty, the folder fills it.
        QCOMPARE(image.pixelColor(8, 8).rgb(), QColor(0xe0, 0x1b, 0x24).rgb());
        QCOMPARE(image.pixelColor(2, 11).alpha() == 0,
                 theme == QLatin1String("quillon-test") && symbol == QLatin1String("starred-symbolic"));
    }

    // The field is as wide as the menu's longest item, and at least 260.
    void theSearchFieldFillsTheMenusWidth()
    {
        m_store->addMenu(QStringLiteral("A menu whose name is longer than any search field would be on its own"));
        m_menu->rebuild();
        QMenu *menu = m_menu->menu();
        menu->popup(QPoint(0, 0));
        QVERIFY(QTest::qWaitForWindowExposed(menu));
        auto *search = qobject_cast<QWidgetAction *>(menu->actions().first());
        QVERIFY(search);
        const QWidget *container = search->defaultWidget();
        QVERIFY(container->width() > 260);
        QCOMPARE(container->width(), menu->actionGeometry(search).width());
        menu->close();
    }

    void lazySubmenusFillOnce()
    {
        int fills = 0;
        LazyMenu lazy([&fills](QMenu *) { ++fills; }, QStringLiteral("No Items"));
        lazy.fillIfNeeded();
        lazy.fillIfNeeded();
        Q_EMIT lazy.aboutToShow();
        QCOMPARE(fills, 1);
        // A fill that adds nothing leaves a disabled stand-in.
        QCOMPARE(lazy.actions().size(), 1);
        QVERIFY(!lazy.actions().first()->isEnabled());
    }

    void typingSearchesAndReturnOpensTheFirstResult()
    {
        m_menu->rebuild();
        m_menu->setSearchText(QStringLiteral("   "));
        QVERIFY(shown().at(2).startsWith(QStringLiteral("Applications")));
        m_menu->setSearchText(QStringLiteral("blue"));
        QCOMPARE(shown().mid(0, 4),
                 (QStringList{"(search field)", "---", "Bluetooth  <settings://gnome/bluetooth>", "---"}));
        m_menu->setSearchText(QStringLiteral("zzz"));
        QCOMPARE(shown().at(2), QStringLiteral("No Items  (disabled)"));

        m_menu->setSearchText(QStringLiteral("i"));
        QLineEdit *field = m_menu->menu()->findChild<QLineEdit *>();
        QVERIFY(field);
        Q_EMIT field->returnPressed();
        QCOMPARE(m_launcher.calls, QStringList{QStringLiteral("start gnome-control-center|wifi")});
        QCOMPARE(m_store->recents().first(), QUrl(QStringLiteral("settings://gnome/wifi")));
    }

    void aPendingUpdateShowsInTheMenu()
    {
        FeedServer server;
        server.body =
            "<rss xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><item>"
            "<enclosure url=\"https://quillon.app/q.tar.gz\" sparkle:version=\"2.0\"/></item></channel></rss>";
        Updates updates(*m_preferences, server.url(), QStringLiteral("1.0"));
        StatusMenu::Services services{sources(), *m_shortcuts, *m_preferences, updates, *m_opener};
        StatusMenu menu(services, [] {});

        updates.runScheduledCheckIfDue();
        QTRY_VERIFY(updates.hasPendingUpdate());
        menu.rebuild();
        QAction *item = menu.menu()->actions().at(menu.menu()->actions().size() - 5);
        QCOMPARE(item->text(), QStringLiteral("Update Available"));
        QVERIFY(!item->icon().isNull() || QIcon::themeName().isEmpty());

        // Choosing it is the user's own check: the flag clears.
        item->trigger();
        QVERIFY(!updates.hasPendingUpdate());
        menu.rebuild();
        QCOMPARE(menu.menu()->actions().at(menu.menu()->actions().size() - 5)->text(),
                 QStringLiteral("Check for Updates…"));
    }

    void theTrayIconOpensAndClosesTheMenu()
    {
        auto owned = std::make_unique<FakeTray>();
        FakeTray &tray = *owned;
        tray.geometry = QRect(1200, 0, 24, 24);
        StatusMenuController controller({sources(), *m_shortcuts, *m_preferences, *m_updates, *m_opener},
                                        std::move(owned), StatusMenuController::Commands{[] {}, {}, {}});
        QVERIFY(!tray.icon.drawing.isNull());

        // A click the panel placed: the menu opens, built afresh.
        tray.click(QPoint(1210, 12));
        QVERIFY(controller.isOpen());
        QCOMPARE(tray.fallbacks, QList<QPoint>{QPoint(1210, 12)});
        QCOMPARE(controller.statusMenu().menu()->actions().last()->text(), QStringLiteral("Quit Quillon"));
        // The next click closes it; the one after opens it again.
        tray.click();
        QVERIFY(!controller.isOpen());
        tray.click();
        QVERIFY(controller.isOpen());
        controller.statusMenu().menu()->close();
    }

    // A panel that draws the menu gets it once, built already, with a
    // "Search…" item in place of the field.
    void aPanelThatDrawsTheMenuGetsASearchItem()
    {
        auto owned = std::make_unique<FakeTray>();
        FakeTray &tray = *owned;
        tray.trayKind = TrayKind::Exported;
        int searches = 0;
        StatusMenuController controller(
            {sources(), *m_shortcuts, *m_preferences, *m_updates, *m_opener}, std::move(owned),
            StatusMenuController::Commands{[] {}, [&searches] { ++searches; },
                                           [] { return QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Space); }});
        QMenu *menu = controller.statusMenu().menu();
        QCOMPARE(tray.exported, menu);
        const QList<QAction *> items = menu->actions();
        QCOMPARE(items.first()->text(), QStringLiteral("Search…"));
        QCOMPARE(items.first()->shortcut(), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Space));
        items.first()->trigger();
        QCOMPARE(searches, 1);

        // The panel about to show it: rebuilt, still with the item first.
        Q_EMIT menu->aboutToShow();
        QVERIFY(controller.isOpen());
        QCOMPARE(menu->actions().first()->text(), QStringLiteral("Search…"));
        Q_EMIT menu->aboutToHide();
        QVERIFY(!controller.isOpen());

        // A click the panel still reports opens nothing of Quillon's own.
        tray.click(QPoint(1200, 10));
        QVERIFY(tray.fallbacks.isEmpty());
        QVERIFY(!controller.isOpen());
        // A panel's click on a lazily filled item opens it as a menu click
        // would: recorded among the recents, then opened.
        m_store->setStyle(SourceStyle::Submenu, MenuSource::systemSettings());
        DBusMenuExporter exporter(menu);
        QVERIFY(exporter.AboutToShow(DBusMenuExporter::rootId));
        QAction *settings = item(menu, QStringLiteral("System Settings"));
        QVERIFY(settings && settings->menu()->actions().isEmpty());
        QVERIFY(exporter.AboutToShow(exporter.idOf(settings)));
        QAction *wifi = settings->menu()->actions().value(0);
        QVERIFY(wifi);
        QCOMPARE(wifi->text(), QStringLiteral("Wi-Fi"));
        exporter.Event(exporter.idOf(wifi), QStringLiteral("clicked"), QDBusVariant(0), 0);
        QTRY_COMPARE(m_store->recents().value(0), QUrl(QStringLiteral("settings://gnome/wifi")));
        QCOMPARE(m_launcher.calls.size(), 1);
        QVERIFY(m_launcher.calls.first().contains(QStringLiteral("wifi")));

        // Without the search field shown, no search item either.
        m_preferences->setValue(QStringLiteral("ShowSearch"), false);
        Q_EMIT menu->aboutToShow();
        QVERIFY(menu->actions().first()->text() != QStringLiteral("Search…"));
    }

    // Without a tray, the panel says so and shows the desktop's own way to
    // bind the search command: the line to paste, or the command itself.
    void theNoTrayNoticeShowsTheDesktopsRoute()
    {
        const HotKeyCombination keys = BindingRoute::suggestedCombination(1);
        const auto ignore = [](const PanelNotice &) {};
        const PanelNotice sway = noTrayNotice(BindingRoute(RouteDesktop::Sway), keys, ignore);
        QVERIFY(sway.message.startsWith(QStringLiteral("No system tray is available.")));
        QVERIFY(sway.message.contains(QStringLiteral("~/.config/sway/config")));
        QCOMPARE(sway.copyLine, std::optional(QStringLiteral("bindsym Ctrl+Alt+space exec quillon --toggle-search")));
        QVERIFY(sway.actions.isEmpty());
        const PanelNotice other = noTrayNotice(BindingRoute(RouteDesktop::Other), keys, ignore);
        QCOMPARE(other.copyLine, std::optional(QStringLiteral("quillon --toggle-search")));
        QVERIFY(other.actions.isEmpty());
    }

    // The subject names the system as a triager looks it up: the
    // distribution's release as major.minor.patch, else the kernel's.
    void theFeedbackSubjectNamesTheSystem_data()
    {
        QTest::addColumn<QString>("osRelease");
        QTest::addColumn<QString>("debianVersion");
        QTest::addColumn<QString>("subject");
        QTest::newRow("Debian point release") << "ID=debian\nVERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\n"
                                              << "12.5\n"
                                              << "Quillon/1.0 debian/12.5.0 Feedback";
        QTest::newRow("Ubuntu point release")
            << "ID=ubuntu\nVERSION_ID=\"22.04\"\nVERSION=\"22.04.3 LTS (Jammy Jellyfish)\"\n"
            << "bookworm/sid\n"
            << "Quillon/1.0 ubuntu/22.04.3 Feedback";
        QTest::newRow("Fedora") << "ID=fedora\nVERSION_ID=40\nVERSION=\"40 (Workstation Edition)\"\n"
                                << ""
                                << "Quillon/1.0 fedora/40.0.0 Feedback";
        QTest::newRow("Debian testing") << "ID=debian\nVERSION_CODENAME=trixie\n"
                                        << "trixie/sid\n"
                                        << "Quillon/1.0 Linux/6.1.0 Feedback";
        QTest::newRow("no os-release") << ""
                                       << ""
                                       << "Quillon/1.0 Linux/6.1.0 Feedback";
    }

    void theFeedbackSubjectNamesTheSystem()
    {
        QFETCH(QString, osRelease);
        QFETCH(QString, debianVersion);
        QFETCH(QString, subject);
        const QUrl url = feedbackURL(QStringLiteral("1.0"),
                                     SystemRelease::from(osRelease, debianVersion, QStringLiteral("6.1.0-18-amd64")));
        QCOMPARE(url.scheme(), QStringLiteral("mailto"));
        QCOMPARE(QUrlQuery(url).queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded), subject);
    }

    // Not modal: the menu and the rest of Quillon keep working beside it.
    void theAboutWindowNamesTheCatalogInUse()
    {
        AboutWindow about(QStringLiteral("1.0"),
                          CatalogChoice{QStringLiteral("gnome/43.json"),
                                        QStringLiteral("the session's desktop is GNOME"),
                                        QStringLiteral("gnome-control-center --version names release 43.9")},
                          [](const QUrl &) {});
        about.present();
        QVERIFY(!about.isModal());
        QStringList texts;
        for (const QLabel *label : about.findChildren<QLabel *>())
            texts.append(label->text());
        QVERIFY2(texts.contains(QStringLiteral("Settings catalog: gnome/43.json")), qPrintable(texts.join(u'|')));
        QVERIFY(texts.contains(QStringLiteral("Chosen because the session's desktop is GNOME, and "
                                              "gnome-control-center --version names release 43.9.")));
        QVERIFY(texts.contains(QStringLiteral("Version 1.0")));
    }

    void menuIconsAreSixteenPoints()
    {
        QPixmap large(32, 32);
        large.fill(Qt::red);
        QCOMPARE(menuSizePixmap(large).size(), QSize(16, 16));
        QPixmap small(12, 12);
        small.fill(Qt::red);
        QCOMPARE(menuSizePixmap(small).size(), QSize(12, 12));
        QCOMPARE(menuSizeIcon(QIcon(large)).availableSizes(), QList{QSize(16, 16)});
    }
};

QTEST_MAIN(TestStatusMenu)
#include "test_statusmenu.moc"
