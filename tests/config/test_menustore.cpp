#include "config/menustate.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "config/urls.h"
#include "jsontext.h"

#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

QList<MenuSource> sourcesOf(const QList<LayoutEntry> &layout)
{
    QList<MenuSource> sources;
    for (const auto &entry : layout)
        sources.append(entry.source);
    return sources;
}

const QList<MenuSource> builtIns{MenuSource::applications(), MenuSource::systemSettings(), MenuSource::shortcuts(),
                                 MenuSource::recents()};

QUrl file(const char *path)
{
    return QUrl::fromLocalFile(QString::fromUtf8(path));
}

QUrl url(const char *text)
{
    return QUrl(QString::fromUtf8(text));
}

} // namespace

class TestMenuStore : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_path;

    // What another process would read from the preferences file right now.
    QVariant stored(const QString &key) const { return QSettings(m_path, QSettings::IniFormat).value(key); }
    void store(const QString &key, const QVariant &value)
    {
        QSettings settings(m_path, QSettings::IniFormat);
        settings.setValue(key, value);
    }

private Q_SLOTS:
    void init()
    {
        m_path = m_dir.filePath(QStringLiteral("%1.conf").arg(QTest::currentTestFunction()));
        QFile::remove(m_path);
    }

    void newSourcesLandAtTheEndWithTheirDefaultStyle()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        // The first start shows the built-ins and writes nothing.
        QCOMPARE(sourcesOf(store.layout()), builtIns);
        for (const auto &entry : store.layout())
            QCOMPARE(entry.style, SourceStyle::Submenu);
        QCOMPARE(store.recentsLimit(), 5);
        QVERIFY(!store.savedLayout());
        QVERIFY(!QFile::exists(m_path));

        QSignalSpy layoutChanged(&store, &MenuStore::layoutChanged);
        store.move({MenuSource::recents()}, MenuSource::applications());
        store.setStyle(SourceStyle::Hidden, MenuSource::shortcuts());
        const auto arranged = store.layout();

        store.addFolder(file("/home/u/Downloads/"));
        const ShortcutRef backup{QStringLiteral("A1B2C3D4-0000-4000-8000-000000000001"), QStringLiteral("Backup")};
        store.addShortcutSource(MenuSource::shortcut(backup));
        store.addShortcutSource(MenuSource::shortcutFolder(backup));
        store.addSeparator();
        const auto menu = store.addMenu(QStringLiteral("Work"));

        // After the user's arrangement, in a fixed order of kinds: menus,
        // folders, shortcut sources, separators.
        const auto layout = store.layout();
        QCOMPARE(layout.mid(0, 4), arranged);
        QCOMPARE(layout.mid(4), (QList<LayoutEntry>{
                                    {MenuSource::customMenu(menu.id), SourceStyle::Submenu},
                                    {MenuSource::folder(store.folders().first().id), SourceStyle::Submenu},
                                    {MenuSource::shortcut(backup), SourceStyle::Inline},
                                    {MenuSource::shortcutFolder(backup), SourceStyle::Submenu},
                                    {MenuSource::separator(store.separators().first()), SourceStyle::Inline},
                                }));
        QCOMPARE(store.style(MenuSource::shortcuts()), SourceStyle::Hidden);
        QCOMPARE(store.style(MenuSource::folder(QUuid::createUuid())), SourceStyle::Hidden);
        QVERIFY(layoutChanged.count() >= 7);
        // A shortcut source already there is not added twice.
        QSignalSpy sourcesChanged(&store, &MenuStore::shortcutSourcesChanged);
        store.addShortcutSource(MenuSource::shortcut(backup));
        QCOMPARE(sourcesChanged.count(), 0);
        QCOMPARE(store.layout(), layout);

        // Removing sources drops them from the layout; their saved entries
        // stay behind but are never shown.
        store.setStyle(SourceStyle::Inline, MenuSource::folder(store.folders().first().id));
        store.remove(MenuSource::folder(store.folders().first().id));
        store.remove(MenuSource::separator(store.separators().first()));
        store.remove(MenuSource::shortcut(backup));
        QVERIFY(store.folders().isEmpty() && store.separators().isEmpty());
        QCOMPARE(store.shortcutSources(), QList{MenuSource::shortcutFolder(backup)});
        QCOMPARE(store.layout().size(), 6);
        QCOMPARE(store.savedLayout()->size(), 9);
        // Built-ins cannot be removed, only hidden.
        store.remove(MenuSource::applications());
        QCOMPARE(store.layout().size(), 6);
    }

    void everyChangeIsOnDiskAndReadBackTheSame()
    {
        QUuid menuId;
        QList<LayoutEntry> layout;
        {
            Preferences preferences(m_path);
            MenuStore store(preferences);
            menuId = store.addMenu(QStringLiteral("Work")).id;
            store.setIncluded(true, file("/usr/share/applications/firefox-esr.desktop"), menuId);
            store.setSymbol(menuId, QStringLiteral("folder-symbolic"));
            store.setColor(menuId, FolderColor::Orange);
            store.addFolder(file("/home/u/Documents/"));
            store.setSort(FolderSort::DateModified, store.folders().first().id);
            store.setFavorite(true, file("/usr/share/applications/org.gnome.Nautilus.desktop"));
            store.setShowsOnlyFavoriteApps(true);
            store.setRecentsLimit(8);
            store.move({MenuSource::customMenu(menuId)}, MenuSource::applications());
            store.recordRecent(url("settings://gnome/wifi"));
            layout = store.layout();

            // Another reader sees each change before the call returned.
            const auto state = decodeMenuState(stored(QStringLiteral("MenuState")).toString().toUtf8());
            QVERIFY(state.ok());
            QCOMPARE(state.value().recentsLimit, 8);
            QCOMPARE(stored(QStringLiteral("Recents")).toStringList(), QStringList{"settings://gnome/wifi"});
        }
        Preferences preferences(m_path);
        MenuStore store(preferences);
        QCOMPARE(store.layout(), layout);
        QCOMPARE(store.menu(menuId)->color, FolderColor::Orange);
        QCOMPARE(store.menu(menuId)->urls.size(), 1);
        QCOMPARE(store.folders().first().sort, FolderSort::DateModified);
        QVERIFY(store.showsOnlyFavoriteApps());
        QCOMPARE(store.recentsLimit(), 8);
        QCOMPARE(store.recents(), QList{url("settings://gnome/wifi")});
    }

    void unreadableStateStartsFromDefaultsSilently_data()
    {
        QTest::addColumn<QVariant>("menuState");
        QTest::newRow("unknown style") << QVariant(QStringLiteral(JSON({"layout":[{"source":{"recents":{}},"style":"hidden"},{"source":{"shortcuts":{}},"style":"folded"}]})));
        QTest::newRow("truncated") << QVariant(QStringLiteral("{\"layout\":[{\"source\":{\"rec"));
        QByteArray garbage(4 << 20, '\0');
        for (qsizetype i = 0; i < garbage.size(); ++i)
            garbage[i] = char((i * 7919) % 251);
        QTest::newRow("megabytes of garbage") << QVariant(garbage);
        QTest::newRow("deep nesting") << QVariant(QString(100000, QLatin1Char('[')));
    }

    void unreadableStateStartsFromDefaultsSilently()
    {
        QFETCH(QVariant, menuState);
        store(QStringLiteral("MenuState"), menuState);
        store(QStringLiteral("Recents"),
              QStringList{"file:///home/u/a.txt", "", "http://[broken", "settings://kde/kcm_kscreen"});
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        Preferences preferences(m_path);
        MenuStore store(preferences);
        QCOMPARE(sourcesOf(store.layout()), builtIns);
        QVERIFY(store.menus().isEmpty());
        QCOMPARE(store.recents(), (QList{file("/home/u/a.txt"), url("settings://kde/kcm_kscreen")}));
        // Left as it was until the next change replaces it.
        QCOMPARE(stored(QStringLiteral("MenuState")), menuState);
    }

    void movingABlock()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        const auto apps = MenuSource::applications();
        const auto settings = MenuSource::systemSettings();
        const auto shortcuts = MenuSource::shortcuts();
        const auto recents = MenuSource::recents();

        store.move({recents, settings}, apps);
        QCOMPARE(sourcesOf(store.layout()), (QList{settings, recents, apps, shortcuts}));
        // `before` among the moved sources: the block goes to the end.
        store.move({apps, settings}, settings);
        QCOMPARE(sourcesOf(store.layout()), (QList{recents, shortcuts, settings, apps}));
        store.move({shortcuts}, std::nullopt);
        QCOMPARE(sourcesOf(store.layout()), (QList{recents, settings, apps, shortcuts}));
        QCOMPARE(sourcesOf(*store.savedLayout()), sourcesOf(store.layout()));
    }

    // A file spelled two ways is one item.
    void recentsAndFavouritesTakeEachFileOnce()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        QSignalSpy changed(&store, &MenuStore::recentsChanged);
        for (int i = 0; i < 11; ++i)
            store.recordRecent(QUrl(QStringLiteral("settings://gnome/panel%1").arg(i)));
        QCOMPARE(store.recents().size(), 10);
        QCOMPARE(store.recents().first(), url("settings://gnome/panel10"));
        QCOMPARE(store.recents().last(), url("settings://gnome/panel1"));

        // Recorded again, it moves to the front.
        store.recordRecent(url("file:///home/u/My%20Notes.txt"));
        store.recordRecent(url("file://localhost/home/u/My Notes.txt"));
        QCOMPARE(store.recents().first(), file("/home/u/My Notes.txt"));
        QCOMPARE(store.recents().count(file("/home/u/My Notes.txt")), 1);
        store.recordRecent(url("file:///home/u/Music/"));
        QCOMPARE(store.recents().first().toString(), QStringLiteral("file:///home/u/Music/"));

        changed.clear();
        store.setRecents(store.recents());
        QCOMPARE(changed.count(), 0);
        store.setRecents({});
        QCOMPARE(changed.count(), 1);
        QVERIFY(stored(QStringLiteral("Recents")).toStringList().isEmpty());

        store.setStyle(SourceStyle::Hidden, MenuSource::recents());
        store.recordRecent(file("/etc/hosts"));
        QVERIFY(store.recents().isEmpty());

        store.setFavorite(true, url("file:///usr/share/applications/gimp.desktop"));
        QVERIFY(store.isFavorite(url("file://localhost/usr/share/applications/gimp.desktop")));
        QVERIFY(!store.isFavorite(file("/usr/share/applications/inkscape.desktop")));
        store.setFavorite(false, url("file://localhost/usr/share/applications/gimp.desktop"));
        QVERIFY(store.favoriteApps().isEmpty());
    }

    void customMenusGroupAndOrderTheirItems()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        const auto id = store.addMenu(QStringLiteral("Mixed")).id;
        const QUrl app = file("/usr/share/applications/org.gnome.Terminal.desktop");
        const QUrl upperApp = file("/opt/Tool.DESKTOP");
        const QUrl wifi = url("settings://gnome/wifi");
        const QUrl sound = url("settings://gnome/sound");
        const QUrl power = url("settings://gnome/power");
        const QUrl run = shortcutURL(QStringLiteral("A1B2C3D4-0000-4000-8000-000000000001"));
        for (const auto &url : {wifi, app, sound, run, upperApp, power})
            store.setIncluded(true, url, id);

        auto menu = *store.menu(id);
        QCOMPARE(MenuStore::urls(MenuItemKind::Apps, menu), QList{app});
        QCOMPARE(MenuStore::urls(MenuItemKind::Files, menu), QList{upperApp});
        QCOMPARE(MenuStore::urls(MenuItemKind::Shortcuts, menu), QList{run});
        QCOMPARE(MenuStore::urls(MenuItemKind::Settings, menu), (QList{wifi, sound, power}));
        QVERIFY(store.contains(sound, id));
        QVERIFY(!store.contains(sound, QUuid::createUuid()));

        // Including again moves to the end; the spelling of a file URL does not matter.
        store.setIncluded(true, url("file://localhost/usr/share/applications/org.gnome.Terminal.desktop"), id);
        QCOMPARE(store.menu(id)->urls.last(), app);
        QCOMPARE(store.menu(id)->urls.count(app), 1);
        store.setIncluded(false, wifi, id);
        QVERIFY(!store.contains(wifi, id));
        store.setIncluded(true, wifi, id);

        // Settings are reordered among themselves and placed after the rest.
        store.moveSettings(id, {0, 2}, 2);
        QCOMPARE(store.menu(id)->urls, (QList{run, upperApp, app, power, sound, wifi}));

        // A copy has an id of its own; operations on a missing menu do nothing.
        const auto copy = store.duplicateMenu(id, QStringLiteral("Mixed copy"));
        QVERIFY(copy && copy->id != id);
        QVERIFY(!store.duplicateMenu(QUuid::createUuid(), QStringLiteral("x")));
        const auto before = store.menus();
        store.renameMenu(QUuid::createUuid(), QStringLiteral("Ghost"));
        store.setSort(FolderSort::DateAdded, QUuid::createUuid());
        QCOMPARE(store.menus(), before);
        store.removeMenu(id);
        QVERIFY(!store.menu(id));
        QCOMPARE(store.layout().last().source, MenuSource::customMenu(copy->id));
    }

    void listMovesFollowTheOriginalOffsets()
    {
        const QList<int> list{0, 1, 2, 3, 4};
        QCOMPARE(movedList(list, {0}, 3), (QList{1, 2, 0, 3, 4}));
        QCOMPARE(movedList(list, {4}, 0), (QList{4, 0, 1, 2, 3}));
        QCOMPARE(movedList(list, {1, 3}, 5), (QList{0, 2, 4, 1, 3}));
        QCOMPARE(movedList(list, {1, 3}, 2), (QList{0, 1, 3, 2, 4}));
        QCOMPARE(movedList(list, {9, -1}, 2), list);
    }
};

QTEST_GUILESS_MAIN(TestMenuStore)
#include "test_menustore.moc"
