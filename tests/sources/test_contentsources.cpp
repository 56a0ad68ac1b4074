#include "config/menustore.h"
#include "config/preferences.h"
#include "fixtures.h"
#include "sources/shortcutlibrary.h"
#include "sources/textmatch.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

QStringList describe(const MenuEntries &entries)
{
    QStringList lines;
    for (const auto &entry : entries) {
        if (const auto *item = std::get_if<OpenableEntry>(&entry))
            lines.append(item->title + (item->enabled ? QString() : QStringLiteral(" (disabled)")));
        else if (const auto *submenu = std::get_if<SubmenuEntry>(&entry))
            lines.append(submenu->title + QStringLiteral(" ▸"));
        else if (const auto *section = std::get_if<SectionEntry>(&entry))
            lines.append(QLatin1Char('[') + section->title + QLatin1Char(']'));
        else if (std::holds_alternative<SeparatorEntry>(entry))
            lines.append(QStringLiteral("---"));
        else
            lines.append(QStringLiteral("! ") + std::get<CommandEntry>(entry).title);
    }
    return lines;
}

} // namespace

// What each kind of content tells the menu, the search and the settings
// window, over a hand-made catalog, a real store and real folders.
class TestContentSources : public QObject
{
    Q_OBJECT

private:
    StoreFixture m_saved;
    TestCatalog m_settings;
    int m_listings = 0;

    const ContentSources &sources()
    {
        return m_settings.sources(*m_saved.store, *m_saved.shortcuts, {}, [this](const QUrl &url, FolderSort sort) {
            ++m_listings;
            return FolderListing::list(url, sort);
        });
    }

    QString path(const QString &relative) const { return m_saved.path(relative); }

private Q_SLOTS:
    void init()
    {
        m_saved.reset();
        m_settings.set({{QStringLiteral("wifi")}, {QStringLiteral("display")}},
                       {testPane(QStringLiteral("wifi"), QStringLiteral("Wi-Fi")),
                        testPane(QStringLiteral("display"), QStringLiteral("Displays"))});
        m_listings = 0;
    }

    // What the settings window's Content tab shows of the kinds whose title,
    // icon or availability depend on the store.
    void titlesIconsAndAvailability()
    {
        QDir().mkpath(path(QStringLiteral("Reports")));
        m_saved.store->addFolder(QUrl::fromLocalFile(path(QStringLiteral("Reports/"))));
        m_saved.store->addFolder(QUrl::fromLocalFile(path(QStringLiteral("Gone/"))));
        const CustomMenu work = m_saved.store->addMenu(QStringLiteral("Work"));
        m_saved.store->setColor(work.id, FolderColor::Green);
        const auto folders = m_saved.store->folders();
        const ContentSources &all = sources();

        QCOMPARE(all.title(MenuSource::folder(folders.at(0).id)), QStringLiteral("Reports"));
        QVERIFY(all.isAvailable(MenuSource::folder(folders.at(0).id)));
        QVERIFY(!all.isAvailable(MenuSource::folder(folders.at(1).id)));
        QCOMPARE(all.icon(MenuSource::customMenu(work.id)),
                 std::optional<ItemIcon>(MenuSymbolIcon{std::nullopt, FolderColor::Green}));
        m_saved.store->removeMenu(work.id);
        QVERIFY(!all.isAvailable(MenuSource::customMenu(work.id)));
        QCOMPARE(all.title(MenuSource::customMenu(work.id)), QString());
        // Until the shortcuts tool has answered, a shortcut is given the benefit of the doubt.
        QVERIFY(all.isAvailable(
            MenuSource::shortcut({QStringLiteral("A1B2C3D4-0000-4000-8000-000000000001"), QStringLiteral("Backup")})));
    }

    void customMenusGroupAndReachTheirKinds()
    {
        QFile(path(QStringLiteral("notes.txt"))).open(QIODevice::WriteOnly);
        const CustomMenu menu = m_saved.store->addMenu(QStringLiteral("Mixed"));
        m_saved.store->setIncluded(true, QUrl(QStringLiteral("settings://gnome/display")), menu.id);
        m_saved.store->setIncluded(true, QUrl::fromLocalFile(path(QStringLiteral("notes.txt"))), menu.id);
        m_saved.store->setIncluded(true, QUrl::fromLocalFile(path(QStringLiteral("deleted.txt"))), menu.id);
        // A place an older settings program had, which this catalog does not.
        m_saved.store->setIncluded(true, QUrl(QStringLiteral("settings://gnome/screen")), menu.id);
        const MenuSource source = MenuSource::customMenu(menu.id);
        const ContentSources &all = sources();

        QCOMPARE(all.of(source).reachableKinds(source),
                 (QSet<MenuItemKind>{MenuItemKind::Files, MenuItemKind::Settings}));
        // Each group is set apart, the first too: a menu spread inline keeps
        // it apart from what stands before it, and a submenu drops it.
        QCOMPARE(describe(all.items(source)),
                 (QStringList{"---", "notes.txt", "deleted.txt (disabled)", "---", "Displays", "screen (disabled)"}));
        QVERIFY(m_saved.store->contains(QUrl(QStringLiteral("settings://gnome/screen")), menu.id));
    }

    // A catalog group that opens nothing itself is a heading: a submenu
    // without an item of its own, and no search result.
    void settingsGroupsWithoutAddress()
    {
        Pane group = testPane(QStringLiteral("privacy"), QStringLiteral("Privacy"), {},
                              QList<QList<QString>>{{QStringLiteral("camera"), QStringLiteral("location")}});
        group.url = QUrl();
        m_settings.set({{QStringLiteral("privacy")}},
                       {group, testPane(QStringLiteral("camera"), QStringLiteral("Camera")),
                        testPane(QStringLiteral("location"), QStringLiteral("Location Services"))});
        const ContentSources &all = sources();
        const MenuEntries entries = all.items(MenuSource::systemSettings());
        QCOMPARE(describe(entries), (QStringList{"---", "Privacy ▸"}));
        QCOMPARE(describe(std::get<SubmenuEntry>(entries.last()).fill()), (QStringList{"Camera", "Location Services"}));
        const auto search = all.of(MenuSource::Case::SystemSettings).searchLibrary();
        QVERIFY(search->results(TextMatcher(QStringLiteral("priv")), 10).isEmpty());
        QCOMPARE(search->results(TextMatcher(QStringLiteral("cam")), 10).size(), 1);
    }

    void recentsSkipWhatIsGoneAndCanBeCleared()
    {
        QFile(path(QStringLiteral("kept.txt"))).open(QIODevice::WriteOnly);
        // A deleted shortcut and a place the catalog no longer has are left
        // out, and do not count against the limit.
        m_saved.store->setRecentsLimit(4);
        m_saved.store->setRecents(
            {QUrl(QStringLiteral("settings://gnome/wifi")),
             QUrl(QStringLiteral("shortcuts://run-shortcut?id=DEADBEEF-0000-4000-8000-000000000000")),
             QUrl(QStringLiteral("settings://gnome/screen")), QUrl::fromLocalFile(path(QStringLiteral("kept.txt"))),
             QUrl::fromLocalFile(path(QStringLiteral("gone.txt"))), QUrl(QStringLiteral("https://example.org/page")),
             QUrl(QStringLiteral("https://example.org/beyond"))});
        const ContentSources &all = sources();
        const MenuEntries entries = all.items(MenuSource::recents());
        QCOMPARE(describe(entries), (QStringList{"Wi-Fi", "kept.txt", "gone.txt (disabled)", "https://example.org/page",
                                                 "---", "! Clear Menu"}));
        std::get<CommandEntry>(entries.last()).run();
        QVERIFY(m_saved.store->recents().isEmpty());
        QVERIFY(all.items(MenuSource::recents()).isEmpty());
    }

    void foldersListLazilyAndSearchOncePerSession()
    {
        QDir().mkpath(path(QStringLiteral("Tree/Inner")));
        QFile(path(QStringLiteral("Tree/Inner/deep.txt"))).open(QIODevice::WriteOnly);
        QFile(path(QStringLiteral("Tree/top.txt"))).open(QIODevice::WriteOnly);
        m_saved.store->addFolder(QUrl::fromLocalFile(path(QStringLiteral("Tree/"))));
        const MenuSource source = MenuSource::folder(m_saved.store->folders().first().id);
        const ContentSources &all = sources();

        const MenuEntries entries = all.items(source);
        QCOMPARE(describe(entries), (QStringList{"Inner ▸", "top.txt"}));
        QCOMPARE(m_listings, 1);
        QCOMPARE(describe(std::get<SubmenuEntry>(entries.first()).fill()), QStringList{"deep.txt"});
        QCOMPARE(m_listings, 2);

        const auto search = all.of(source).searchSource(source);
        QVERIFY(search);
        QCOMPARE(search->results(TextMatcher(QStringLiteral("top")), 10).size(), 1);
        QCOMPARE(search->results(TextMatcher(QStringLiteral("to")), 10).size(), 1);
        QCOMPARE(m_listings, 3);
        QVERIFY(!all.of(MenuSource::Case::Recents).searchSource(MenuSource::recents()));
    }
};

QTEST_GUILESS_MAIN(TestContentSources)
#include "test_contentsources.moc"
