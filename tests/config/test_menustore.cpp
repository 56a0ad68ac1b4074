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

    void firstStartShowsTheBuiltInsAndWritesNothing()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        QCOMPARE(sourcesOf(store.layout()), builtIns);
        for (const auto &entry : store.layout())
            QCOMPARE(entry.style, SourceStyle::Submenu);
        QCOMPARE(store.recentsLimit(), 5);
        QVERIFY(!store.savedLayout());
        QVERIFY(!QFile::exists(m_path));
    }

    void newSourcesLandAtTheEndWithTheirDefaultStyle()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
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
        QCOMPARE(layout.at(4), (LayoutEntry{MenuSource::customMenu(menu.id), SourceStyle::Submenu}));
        QCOMPARE(layout.at(5), (LayoutEntry{MenuSource::folder(store.folders().first().id), SourceStyle::Submenu}));
        QCOMPARE(layout.at(6), (LayoutEntry{MenuSource::shortcut(backup), SourceStyle::Inline}));
        QCOMPARE(layout.at(7), (LayoutEntry{MenuSource::shortcutFolder(backup), SourceStyle::Submenu}));
        QCOMPARE(layout.at(8), (LayoutEntry{MenuSource::separator(store.separators().first()), SourceStyle::Inline}));
        QCOMPARE(store.style(MenuSource::shortcuts()), SourceStyle::Hidden);
        QCOMPARE(store.style(MenuSource::folder(QUuid::createUuid())), SourceStyle::Hidden);
        QVERIFY(layoutChanged.count() >= 7);

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
            store.recordRecent(QUrl(QStringLiteral("settings://gnome/wifi")));
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
        QCOMPARE(store.recents(), QList{QUrl(QStringLiteral("settings://gnome/wifi"))});
    }

    void unreadableStateStartsFromDefaultsSilently_data()
    {
        QTest::addColumn<QVariant>("menuState");
        QTest::newRow("unknown style") << QVariant(QStringLiteral(JSON({"layout":[{"source":{"recents":{}},"style":"hidden"},{"source":{"shortcuts":{}},"style":"folded"}]})));
        QTest::newRow("wrong type") << QVariant(QStringLiteral(JSON({"menus":"Work"})));
        QTest::newRow("truncated") << QVariant(QStringLiteral("{\"layout\":[{\"source\":{\"rec"));
        QTest::newRow("not json") << QVariant(QStringLiteral("@@@ this is not a menu @@@"));
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
        QCOMPARE(store.recents(), (QList{file("/home/u/a.txt"), QUrl(QStringLiteral("settings://kde/kcm_kscreen"))}));
        // Left as it was until the next change replaces it.
        QCOMPARE(stored(QStringLiteral("MenuState")), menuState);
    }

    void handWrittenStateIsDerivedInOrder()
    {
        store(QStringLiteral("MenuState"),
              QStringLiteral(JSON({
            "layout": [
                {"source": {"recents": {}}, "style": "inline"},
                {"source": {"folder": {"_0": "00000000-0000-4000-8000-0000000000F0"}}, "style": "hidden"},
                {"source": {"customMenu": {"_0": "00000000-0000-4000-8000-00000000000B"}}, "style": "inline"}
            ],
            "menus": [{"id": "00000000-0000-4000-8000-00000000000A", "name": "A", "urls": []},
                      {"id": "00000000-0000-4000-8000-00000000000B", "name": "B", "urls": []}],
            "separators": ["00000000-0000-4000-8000-0000000000C0"]
        })));
        Preferences preferences(m_path);
        MenuStore store(preferences);
        const auto b =
            MenuSource::customMenu(QUuid::fromString(QStringLiteral("00000000-0000-4000-8000-00000000000B")));
        const auto a =
            MenuSource::customMenu(QUuid::fromString(QStringLiteral("00000000-0000-4000-8000-00000000000A")));
        const auto separator =
            MenuSource::separator(QUuid::fromString(QStringLiteral("00000000-0000-4000-8000-0000000000C0")));
        QCOMPARE(store.layout(), (QList<LayoutEntry>{
                                     {MenuSource::recents(), SourceStyle::Inline},
                                     {b, SourceStyle::Inline},
                                     {MenuSource::applications(), SourceStyle::Submenu},
                                     {MenuSource::systemSettings(), SourceStyle::Submenu},
                                     {MenuSource::shortcuts(), SourceStyle::Submenu},
                                     {a, SourceStyle::Submenu},
                                     {separator, SourceStyle::Inline},
                                 }));
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

    void recentsAreNormalisedDeduplicatedAndCapped()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        QSignalSpy changed(&store, &MenuStore::recentsChanged);
        for (int i = 0; i < 11; ++i)
            store.recordRecent(QUrl(QStringLiteral("settings://gnome/panel%1").arg(i)));
        QCOMPARE(store.recents().size(), 10);
        QCOMPARE(store.recents().first(), QUrl(QStringLiteral("settings://gnome/panel10")));
        QCOMPARE(store.recents().last(), QUrl(QStringLiteral("settings://gnome/panel1")));

        // The same file spelled two ways is one recent item, moved to the front.
        store.recordRecent(QUrl(QStringLiteral("file:///home/u/My%20Notes.txt")));
        store.recordRecent(QUrl(QStringLiteral("file://localhost/home/u/My Notes.txt")));
        QCOMPARE(store.recents().first(), file("/home/u/My Notes.txt"));
        QCOMPARE(store.recents().count(file("/home/u/My Notes.txt")), 1);
        store.recordRecent(QUrl(QStringLiteral("file:///home/u/Music/")));
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
    }

    void customMenusGroupAndOrderTheirItems()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        const auto id = store.addMenu(QStringLiteral("Mixed")).id;
        const QUrl app = file("/usr/share/applications/org.gnome.Terminal.desktop");
        const QUrl upperApp = file("/opt/Tool.DESKTOP");
        const QUrl wifi(QStringLiteral("settings://gnome/wifi"));
        const QUrl sound(QStringLiteral("settings://gnome/sound"));
        const QUrl power(QStringLiteral("settings://gnome/power"));
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
        store.setIncluded(
            true, QUrl(QStringLiteral("file://localhost/usr/share/applications/org.gnome.Terminal.desktop")), id);
        QCOMPARE(store.menu(id)->urls.last(), app);
        QCOMPARE(store.menu(id)->urls.count(app), 1);
        store.setIncluded(false, wifi, id);
        QVERIFY(!store.contains(wifi, id));
        store.setIncluded(true, wifi, id);

        // Settings are reordered among themselves and placed after the rest.
        store.moveSettings(id, {2}, 0);
        QCOMPARE(store.menu(id)->urls, (QList{run, upperApp, app, wifi, sound, power}));
        store.moveSettings(id, {0, 2}, 2);
        QCOMPARE(MenuStore::urls(MenuItemKind::Settings, *store.menu(id)), (QList{sound, wifi, power}));

        QCOMPARE(MenuStore::groupOrder(*store.menu(id)), allCases<MenuItemKind>());
        store.moveGroups(id, {MenuItemKind::Apps, MenuItemKind::Settings}, {1}, 0);
        QCOMPARE(MenuStore::groupOrder(*store.menu(id)),
                 (QList{MenuItemKind::Settings, MenuItemKind::Apps, MenuItemKind::Files, MenuItemKind::Shortcuts}));
    }

    void menuOperationsOnMissingMenusDoNothing()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        const auto work = store.addMenu(QStringLiteral("Work"));
        store.setIncluded(true, QUrl(QStringLiteral("settings://gnome/wifi")), work.id);
        const auto copy = store.duplicateMenu(work.id, QStringLiteral("Work copy"));
        QVERIFY(copy && copy->id != work.id);
        QCOMPARE(copy->urls, store.menu(work.id)->urls);
        QVERIFY(!store.duplicateMenu(QUuid::createUuid(), QStringLiteral("x")));

        const auto before = store.menus();
        store.renameMenu(QUuid::createUuid(), QStringLiteral("Ghost"));
        store.setSort(FolderSort::DateAdded, QUuid::createUuid());
        QCOMPARE(store.menus(), before);

        store.renameMenu(work.id, QStringLiteral("Office"));
        QCOMPARE(store.menu(work.id)->name, QStringLiteral("Office"));
        store.removeMenu(work.id);
        QVERIFY(!store.menu(work.id));
        QCOMPARE(store.layout().last().source, MenuSource::customMenu(copy->id));
    }

    void addingAPresentShortcutSourceDoesNotSave()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        const auto source = MenuSource::shortcutFolder({QStringLiteral("F"), QStringLiteral("Daily")});
        store.addShortcutSource(source);
        this->store(QStringLiteral("MenuState"), QStringLiteral("sentinel"));
        QSignalSpy changed(&store, &MenuStore::shortcutSourcesChanged);
        store.addShortcutSource(source);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(stored(QStringLiteral("MenuState")).toString(), QStringLiteral("sentinel"));
    }

    void favouritesCompareByPath()
    {
        Preferences preferences(m_path);
        MenuStore store(preferences);
        store.setFavorite(true, QUrl(QStringLiteral("file:///usr/share/applications/gimp.desktop")));
        QVERIFY(store.isFavorite(QUrl(QStringLiteral("file://localhost/usr/share/applications/gimp.desktop"))));
        QVERIFY(!store.isFavorite(file("/usr/share/applications/inkscape.desktop")));
        store.setFavorite(false, QUrl(QStringLiteral("file://localhost/usr/share/applications/gimp.desktop")));
        QVERIFY(store.favoriteApps().isEmpty());
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
