#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "config/urls.h"
#include "fixtures.h"
#include "search/searchsession.h"
#include "sources/shortcutlibrary.h"
#include "sources/textmatch.h"

#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

namespace {

Item item(const QString &label, const QString &url, Kind kind = Kind::Page)
{
    Item i;
    i.label = label;
    i.kind = kind;
    i.url = QUrl(url);
    return i;
}

App app(const QString &name)
{
    return App{name, QUrl::fromLocalFile(QStringLiteral("/usr/share/applications/%1.desktop").arg(name)), {}};
}

QStringList titles(const SearchGroup &group)
{
    QStringList result;
    for (const auto &r : group.results)
        result.append(r.title);
    return result;
}

} // namespace

class TestSearchSession : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    TestCatalog m_settings;
    QList<App> m_apps;
    int m_scans = 0;
    int m_listings = 0;

    ShortcutLibrary m_noShortcuts{QStringLiteral("/nonexistent/quillon-shortcuts")};

    const ContentSources &sources(MenuStore &store)
    {
        return m_settings.sources(
            store, m_noShortcuts,
            [this] {
                ++m_scans;
                return QList<AppEntry>(m_apps.begin(), m_apps.end());
            },
            [this](const QUrl &url, FolderSort sort) {
                ++m_listings;
                return FolderListing::list(url, sort);
            });
    }

    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<MenuStore> m_store;
    MenuStore &freshStore()
    {
        static int n = 0;
        m_store.reset();
        m_preferences = std::make_unique<Preferences>(m_dir.filePath(QStringLiteral("p%1.conf").arg(++n)));
        m_store = std::make_unique<MenuStore>(*m_preferences);
        return *m_store;
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_settings.set({{QStringLiteral("wifi"), QStringLiteral("missing"), QStringLiteral("privacy")},
                        {QStringLiteral("online-accounts")}},
                       {
                           testPane(QStringLiteral("wifi"), QStringLiteral("Wi-Fi"),
                                    {item(QStringLiteral("Create Hotspot"),
                                          QStringLiteral("settings://gnome/wifi/create-wifi"), Kind::Sheet)}),
                           testPane(QStringLiteral("privacy"), QStringLiteral("Privacy"), {},
                                    QList<QList<QString>>{{QStringLiteral("location"), QStringLiteral("camera")}}),
                           testPane(QStringLiteral("location"), QStringLiteral("Location Services")),
                           testPane(QStringLiteral("camera"), QStringLiteral("Camera")),
                           testPane(QStringLiteral("online-accounts"), QStringLiteral("Online Accounts"),
                                    {item(QStringLiteral("Add Google Account"),
                                          QStringLiteral("settings://gnome/online-accounts/add/google")),
                                     item(QStringLiteral("Add Nextcloud Account"),
                                          QStringLiteral("settings://gnome/online-accounts/add/owncloud"))}),
                       });
        m_apps = {app(QStringLiteral("Visual Studio")), app(QStringLiteral("Safari")), app(QStringLiteral("Écran")),
                  app(QStringLiteral("Sane Scanner")), app(QStringLiteral("Straße"))};
    }

    void foldingIgnoresCaseAndAccents()
    {
        QVERIFY(TextMatcher(QStringLiteral("e")).matches(foldForSearch(QStringLiteral("Écran"))));
        QVERIFY(TextMatcher(QStringLiteral("STRASSE")).matches(foldForSearch(QStringLiteral("Straße"))));
        QVERIFY(TextMatcher(QStringLiteral("ecr")).isPrefixOf(foldForSearch(QStringLiteral("Écran"))));
        QVERIFY(!TextMatcher(QString()).matches(foldForSearch(QStringLiteral("anything"))));
        QVERIFY(!TextMatcher(QStringLiteral("x")).matches(foldForSearch(QStringLiteral("Écran"))));
    }

    void onlyWhatTheMenusReach()
    {
        MenuStore &store = freshStore();
        const auto layout = store.layout();
        for (const auto &entry : layout)
            store.setStyle(SourceStyle::Hidden, entry.source);
        SearchSession hidden(sources(store));
        QVERIFY(hidden.search(QStringLiteral("a"), 10).isEmpty());

        // A custom menu holding one application opens the whole Applications group.
        const auto menu = store.addMenu(QStringLiteral("Mine"));
        store.setIncluded(true, m_apps.first().url, menu.id);
        SearchSession throughMenu(sources(store));
        const auto groups = throughMenu.search(QStringLiteral("sa"), 10);
        QCOMPARE(groups.size(), 1);
        QCOMPARE(groups.first().title, QStringLiteral("Applications"));
        // A settings place in a visible menu opens System Settings.
        store.setIncluded(true, QUrl(QStringLiteral("settings://gnome/camera")), menu.id);
        QCOMPARE(SearchSession(sources(store)).search(QStringLiteral("cam"), 10).size(), 1);
        // Hiding the menu closes both again.
        store.setStyle(SourceStyle::Hidden, MenuSource::customMenu(menu.id));
        QVERIFY(SearchSession(sources(store)).search(QStringLiteral("a"), 10).isEmpty());
    }

    void applicationsRankPrefixesFirst()
    {
        MenuStore &store = freshStore();
        SearchSession session(sources(store));
        m_scans = 0;
        // Names that begin with the query first, each part in library order.
        const auto groups = session.search(QStringLiteral("s"), 10);
        QCOMPARE(titles(groups.first()), (QStringList{"Safari", "Sane Scanner", "Straße", "Visual Studio"}));
        QCOMPARE(titles(session.search(QStringLiteral("e"), 2).first()), (QStringList{"Écran", "Sane Scanner"}));
        QCOMPARE(titles(session.search(QStringLiteral("s"), 1).first()), QStringList{"Safari"});
        QVERIFY(session.search(QStringLiteral("sa"), 0).isEmpty());
        QCOMPARE(m_scans, 1);
    }

    // Containment first, untouched; then what matches once punctuation and
    // spaces are left out on both sides.
    void punctuationAndSpacesMatchLast_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<int>("limit");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("contained first") << "wifi" << 10 << QStringList{"WiFi Tool", "Network (Wifi)", "Wi-Fi Radar"};
        QTest::newRow("limit keeps the contained") << "wifi" << 2 << QStringList{"WiFi Tool", "Network (Wifi)"};
        QTest::newRow("spaces and symbols") << "datetime" << 10 << QStringList{"Date & Time"};
        QTest::newRow("the query's own spaces") << "date time" << 10 << QStringList{"Date & Time"};
        QTest::newRow("punctuation alone") << "-" << 10 << QStringList{"Wi-Fi Radar"};
    }

    void punctuationAndSpacesMatchLast()
    {
        QFETCH(QString, query);
        QFETCH(int, limit);
        QFETCH(QStringList, expected);
        const auto library =
            std::exchange(m_apps, {app(QStringLiteral("Wi-Fi Radar")), app(QStringLiteral("Date & Time")),
                                   app(QStringLiteral("WiFi Tool")), app(QStringLiteral("Network (Wifi)"))});
        const auto restore = qScopeGuard([&] { m_apps = library; });
        SearchSession session(sources(freshStore()));
        const auto groups = session.search(query, limit);
        QVERIFY(!groups.isEmpty());
        QCOMPARE(groups.first().title, QStringLiteral("Applications"));
        QCOMPARE(titles(groups.first()), expected);
        if (query == QLatin1String("wifi"))
            QCOMPARE(titles(groups.last()), QStringList{"Wi-Fi"});
    }

    void settingsPlacesInCatalogOrder()
    {
        MenuStore &store = freshStore();
        SearchSession session(sources(store));
        auto groups = session.search(QStringLiteral("a"), 40);
        const auto settings = std::find_if(groups.begin(), groups.end(), [](const SearchGroup &g) {
            return g.title == QLatin1String("System Settings");
        });
        QVERIFY(settings != groups.end());
        QCOMPARE(titles(*settings),
                 (QStringList{"Wi-Fi › Create Hotspot…", "Privacy", "Location Services", "Camera", "Online Accounts",
                              "Online Accounts › Add Google Account", "Online Accounts › Add Nextcloud Account"}));
        QCOMPARE(settings->results.first().url, QUrl(QStringLiteral("settings://gnome/wifi/create-wifi")));
        groups = session.search(QStringLiteral("account"), 2);
        QCOMPARE(titles(groups.last()), (QStringList{"Online Accounts", "Online Accounts › Add Google Account"}));
    }

    void foldersAreListedOncePerSession()
    {
        QTemporaryDir folder;
        for (const char *name : {"Report.pdf", "report-2.txt", "notes.md", ".hidden-report"}) {
            QFile file(folder.filePath(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        MenuStore &store = freshStore();
        store.addFolder(QUrl::fromLocalFile(folder.path() + QLatin1Char('/')));
        SearchSession session(sources(store));
        m_listings = 0;
        auto groups = session.search(QStringLiteral("report"), 10);
        QCOMPARE(groups.last().title, QFileInfo(folder.path()).fileName());
        QCOMPARE(titles(groups.last()), (QStringList{"report-2.txt", "Report.pdf"}));
        // The extension is not searched.
        QVERIFY(session.search(QStringLiteral("md"), 10).isEmpty()
                || titles(session.search(QStringLiteral("md"), 10).last()).isEmpty());
        session.search(QStringLiteral("notes"), 10);
        QCOMPARE(m_listings, 1);
    }

    void storedAddressesAreDescribed()
    {
        MenuStore &store = freshStore();
        SearchSession session(sources(store));
        QCOMPARE(session.entry(QUrl(QStringLiteral("settings://gnome/wifi/create-wifi")))->title,
                 QStringLiteral("Wi-Fi › Create Hotspot…"));
        QCOMPARE(session.entry(QUrl(QStringLiteral("settings://gnome/camera")))->title, QStringLiteral("Camera"));
        QVERIFY(!session.entry(QUrl(QStringLiteral("settings://gnome/nowhere"))));
        QVERIFY(!session.entry(shortcutURL(QStringLiteral("X"))));
        QVERIFY(!session.entry(QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("gone.txt")))));

        const QString desktop = m_dir.filePath(QStringLiteral("org.example.Editor.desktop"));
        QFile file(desktop);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\nName=Text Editor\nExec=true\n");
        file.close();
        const auto entry = session.entry(QUrl::fromLocalFile(desktop));
        QCOMPARE(entry->title, QStringLiteral("Text Editor"));
        QCOMPARE(entry->icon, ItemIcon(FileIcon{desktop}));
    }
};

QTEST_GUILESS_MAIN(TestSearchSession)
#include "test_searchsession.moc"
