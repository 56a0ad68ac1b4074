#include "config/urls.h"
#include "fixtures.h"
#include "search/searchsession.h"

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
    StoreFixture m_saved;
    TestCatalog m_settings;
    QList<App> m_apps;
    int m_scans = 0;
    int m_listings = 0;

    // Sources over the current store that count the scans and listings.
    const ContentSources &sources()
    {
        return m_settings.sources(
            *m_saved.store, *m_saved.shortcuts,
            [this] {
                ++m_scans;
                return QList<AppEntry>(m_apps.begin(), m_apps.end());
            },
            [this](const QUrl &url, FolderSort sort) {
                ++m_listings;
                return FolderListing::list(url, sort);
            });
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
    }

    void init()
    {
        m_saved.reset();
        m_apps = {app(QStringLiteral("Visual Studio")), app(QStringLiteral("Safari")), app(QStringLiteral("Écran")),
                  app(QStringLiteral("Sane Scanner")), app(QStringLiteral("Straße"))};
        m_scans = 0;
        m_listings = 0;
    }

    void onlyWhatTheMenusReach()
    {
        MenuStore &store = *m_saved.store;
        const auto layout = store.layout();
        for (const auto &entry : layout)
            store.setStyle(SourceStyle::Hidden, entry.source);
        QVERIFY(SearchSession(sources()).search(QStringLiteral("a"), 10).isEmpty());

        // A custom menu holding one application opens the whole Applications group.
        const auto menu = store.addMenu(QStringLiteral("Mine"));
        store.setIncluded(true, m_apps.first().url, menu.id);
        const auto groups = SearchSession(sources()).search(QStringLiteral("sa"), 10);
        QCOMPARE(groups.size(), 1);
        QCOMPARE(groups.first().title, QStringLiteral("Applications"));
        // A settings place in a visible menu opens System Settings.
        store.setIncluded(true, QUrl(QStringLiteral("settings://gnome/camera")), menu.id);
        QCOMPARE(SearchSession(sources()).search(QStringLiteral("cam"), 10).size(), 1);
        // Hiding the menu closes both again.
        store.setStyle(SourceStyle::Hidden, MenuSource::customMenu(menu.id));
        QVERIFY(SearchSession(sources()).search(QStringLiteral("a"), 10).isEmpty());
    }

    void applicationsRankPrefixesFirst()
    {
        SearchSession session(sources());
        // Names that begin with the query first, each part in library order.
        const auto groups = session.search(QStringLiteral("s"), 10);
        QCOMPARE(titles(groups.first()), (QStringList{"Safari", "Sane Scanner", "Straße", "Visual Studio"}));
        QCOMPARE(titles(session.search(QStringLiteral("e"), 2).first()), (QStringList{"Écran", "Sane Scanner"}));
        QCOMPARE(titles(session.search(QStringLiteral("s"), 1).first()), QStringList{"Safari"});
        QVERIFY(session.search(QStringLiteral("sa"), 0).isEmpty());
        // Case and accents do not matter; an empty query finds nothing.
        QCOMPARE(titles(session.search(QStringLiteral("STRASSE"), 10).value(0)), QStringList{"Straße"});
        QVERIFY(session.search(QString(), 10).isEmpty());
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
        m_apps = {app(QStringLiteral("Wi-Fi Radar")), app(QStringLiteral("Date & Time")),
                  app(QStringLiteral("WiFi Tool")), app(QStringLiteral("Network (Wifi)"))};
        const auto groups = SearchSession(sources()).search(query, limit);
        QVERIFY(!groups.isEmpty());
        QCOMPARE(groups.first().title, QStringLiteral("Applications"));
        QCOMPARE(titles(groups.first()), expected);
        if (query == QLatin1String("wifi"))
            QCOMPARE(titles(groups.last()), QStringList{"Wi-Fi"});
    }

    void settingsPlacesInCatalogOrder()
    {
        SearchSession session(sources());
        const auto groups = session.search(QStringLiteral("a"), 40);
        QCOMPARE(groups.size(), 2);
        const SearchGroup &settings = groups.last();
        QCOMPARE(settings.title, QStringLiteral("System Settings"));
        QCOMPARE(titles(settings),
                 (QStringList{"Wi-Fi › Create Hotspot…", "Privacy", "Location Services", "Camera", "Online Accounts",
                              "Online Accounts › Add Google Account", "Online Accounts › Add Nextcloud Account"}));
        QCOMPARE(settings.results.first().url, QUrl(QStringLiteral("settings://gnome/wifi/create-wifi")));
        QCOMPARE(titles(session.search(QStringLiteral("account"), 2).last()),
                 (QStringList{"Online Accounts", "Online Accounts › Add Google Account"}));
    }

    void foldersAreListedOncePerSession()
    {
        QTemporaryDir folder;
        for (const char *name : {"Report.pdf", "report-2.txt", "notes.md", ".hidden-report"}) {
            QFile file(folder.filePath(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        m_saved.store->addFolder(QUrl::fromLocalFile(folder.path() + QLatin1Char('/')));
        SearchSession session(sources());
        const auto groups = session.search(QStringLiteral("report"), 10);
        QCOMPARE(groups.last().title, QFileInfo(folder.path()).fileName());
        QCOMPARE(titles(groups.last()), (QStringList{"report-2.txt", "Report.pdf"}));
        // The extension is not searched.
        QVERIFY(session.search(QStringLiteral("md"), 10).isEmpty());
        session.search(QStringLiteral("notes"), 10);
        QCOMPARE(m_listings, 1);
    }

    void storedAddressesAreDescribed()
    {
        SearchSession session(sources());
        QCOMPARE(session.entry(QUrl(QStringLiteral("settings://gnome/wifi/create-wifi")))->title,
                 QStringLiteral("Wi-Fi › Create Hotspot…"));
        QCOMPARE(session.entry(QUrl(QStringLiteral("settings://gnome/camera")))->title, QStringLiteral("Camera"));
        QVERIFY(!session.entry(QUrl(QStringLiteral("settings://gnome/nowhere"))));
        QVERIFY(!session.entry(shortcutURL(QStringLiteral("X"))));
        QVERIFY(!session.entry(QUrl::fromLocalFile(m_saved.path(QStringLiteral("gone.txt")))));

        const QString desktop = m_saved.path(QStringLiteral("org.example.Editor.desktop"));
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
