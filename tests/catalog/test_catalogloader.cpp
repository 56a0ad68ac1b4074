#include "catalog/catalogcodec.h"
#include "catalog/catalogloader.h"
#include "jsontext.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString documents = QStringLiteral(CATALOG_TEST_DATA "/documents");

OSVersion version(const char *text)
{
    return OSVersion::parse(QString::fromLatin1(text)).value();
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

bool writeScript(const QString &path, const QByteArray &script)
{
    return writeFile(path, "#!/bin/sh\n" + script) && QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
}

// One desktop, whose settings program is fake-settings.
CatalogEnvironment oneProgram(const QString &root, const QString &desktop, const QStringList &metainfo,
                              const QString &bin, const QString &cache = {})
{
    return {root, {desktop}, {{desktop, QStringLiteral("fake-settings"), metainfo}}, {bin}, cache};
}

CatalogEnvironment environment(const QString &root, const QStringList &desktops, const QStringList &searchPaths = {})
{
    return {root,
            desktops,
            {{QStringLiteral("gnome"),
              QStringLiteral("fake-gnome-settings"),
              {documents + QStringLiteral("/gnome.metainfo.xml")}},
             {QStringLiteral("kde"), QStringLiteral("fake-kde-settings"), {QStringLiteral("/nonexistent.xml")}}},
            searchPaths.isEmpty() ? QStringList{QStringLiteral("/nonexistent")} : searchPaths,
            {}};
}

} // namespace

class TestCatalogLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void versionsParse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QList<qint64>>("parts");
        QTest::newRow("three parts") << "15.4.1" << QList<qint64>{15, 4, 1};
        QTest::newRow("empty pieces dropped") << ".15..4." << QList<qint64>{15, 4};
        QTest::newRow("signs") << "+3.-1" << QList<qint64>{3, -1};
        QTest::newRow("largest") << "9223372036854775807" << QList<qint64>{9223372036854775807};
        QTest::newRow("overflow") << "9223372036854775808" << QList<qint64>{};
        QTest::newRow("empty") << "" << QList<qint64>{};
        QTest::newRow("suffix") << "46~beta" << QList<qint64>{};
        QTest::newRow("space") << " 15" << QList<qint64>{};
        QTest::newRow("bare sign") << "15.+" << QList<qint64>{};
    }

    void versionsParse()
    {
        QFETCH(QString, text);
        QFETCH(QList<qint64>, parts);
        const auto parsed = OSVersion::parse(text);
        QCOMPARE(parsed.has_value(), !parts.isEmpty());
        if (parsed)
            QCOMPARE(parsed->parts, parts);
    }

    void versionsCompareWithMissingPartsAsZero()
    {
        QVERIFY(version("1.2.3.0") == version("1.2.3"));
        QCOMPARE(qHash(version("15")), qHash(version("15.0.0")));
        QVERIFY(version("1.2.3.1") > version("1.2.3"));
        QVERIFY(version("14.6") < version("15"));
        QVERIFY(!(version("15") < version("15.0")));
        QVERIFY(version("5.27") < version("5.100"));
        QVERIFY(version("-1") < version("0"));
    }

    void documentChoice_data()
    {
        QTest::addColumn<QString>("running");
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QString>("chosen");
        QTest::newRow("newest not newer") << "15.3.1" << QStringList{"14.json", "15.json"} << "15.json";
        QTest::newRow("newer skipped") << "15.3" << QStringList{"14.json", "15.4.json"} << "14.json";
        QTest::newRow("all newer: oldest") << "14.6" << QStringList{"16.json", "15.json"} << "15.json";
        QTest::newRow("equal names: later listed") << "15.0.0" << QStringList{"15.0.json", "15.json"} << "15.json";
        QTest::newRow("equal names, other order") << "15" << QStringList{"15.json", "15.0.json"} << "15.0.json";
        QTest::newRow("listing order is not version order")
            << "5.50" << QStringList{"5.100.json", "5.27.json", "5.9.json"} << "5.27.json";
        QTest::newRow("unknown running: oldest") << "" << QStringList{"46.json", "43.json", "beta.json"} << "43.json";
        QTest::newRow("names that are not versions") << "15" << QStringList{"beta.json", ".json", "README.json"} << "";
    }

    void documentChoice()
    {
        QFETCH(QString, running);
        QFETCH(QStringList, files);
        QFETCH(QString, chosen);
        QCOMPARE(chooseDocument(files, OSVersion::parse(running)).value_or(QString()), chosen);
    }

    void desktopChoice()
    {
        QTemporaryDir bin;
        QVERIFY(bin.isValid());
        QVERIFY(writeScript(bin.filePath(QStringLiteral("fake-kde-settings")), {}));

        // The first session desktop with a catalog folder, in any case.
        QCOMPARE(chooseDesktop(environment(documents, {"ubuntu", "KDE", "GNOME"})), QStringLiteral("kde"));
        QCOMPARE(chooseDesktop(environment(documents, {"GNOME"}, {bin.path()})), QStringLiteral("gnome"));
        // Otherwise the desktop whose settings program is installed.
        QCOMPARE(chooseDesktop(environment(documents, {"X-Cinnamon"}, {bin.path()})), QStringLiteral("kde"));
    }

    void loadingFollowsTheDesktopAndItsVersion()
    {
        // GNOME Settings 44.1 gets the 43 document, not the newer 46, and
        // says why (the About window shows it).
        CatalogChoice choice;
        const auto gnome = loadCatalog(environment(documents, {"GNOME"}), &choice);
        QVERIFY2(gnome.ok(), qPrintable(gnome.error()));
        QCOMPARE(gnome.value().osVersion, QStringLiteral("43"));
        QCOMPARE(choice.document, QStringLiteral("gnome/43.json"));
        QCOMPARE(choice.desktopReason, QStringLiteral("the session's desktop is GNOME"));
        QVERIFY2(choice.versionReason.endsWith(QStringLiteral("names release 44.1")), qPrintable(choice.versionReason));
        QCOMPARE(gnome.value().pane(QStringLiteral("wifi"))->url, QUrl(QStringLiteral("settings://gnome/wifi")));

        // The KDE document lacks an item URL: the whole load fails.
        const auto kde = loadCatalog(environment(documents, {"KDE"}));
        QVERIFY(!kde.ok());
        QCOMPARE(kde.error(),
                 QStringLiteral("5.27.json could not be decoded: \"panes\": [0]: "
                                "pane \"kcm_kscreen\": \"sections\": [0]: \"items\": [0]: missing key \"url\""));

        // Neither a session desktop nor a settings program: gnome, and with
        // no readable AppStream file, the oldest document.
        QTemporaryDir empty;
        const QString broken = empty.filePath(QStringLiteral("broken.xml"));
        QVERIFY(writeFile(broken, "<component><releases><release version=\"46\"></releases>"));
        auto fallback = environment(documents, {"X-Cinnamon"});
        fallback.programs[0].metainfoPaths = {QStringLiteral("/nonexistent.xml"), broken};
        QVERIFY(loadCatalog(fallback, &choice).ok());
        QCOMPARE(choice.document, QStringLiteral("gnome/43.json"));
        QCOMPARE(choice.desktopReason, QStringLiteral("no desktop of the session has a catalog and none of "
                                                      "fake-gnome-settings, fake-kde-settings is installed"));
        QVERIFY2(choice.versionReason.contains(QStringLiteral("version is unknown")), qPrintable(choice.versionReason));

        QVERIFY(QDir(empty.path()).mkpath(QStringLiteral("gnome")));
        QVERIFY(writeFile(empty.filePath(QStringLiteral("gnome/beta.json")), "{}"));
        QCOMPARE(loadCatalog(environment(empty.path(), {"GNOME"})).error(),
                 QStringLiteral("No catalog in the app bundle's Catalogs folder"));
        QCOMPARE(loadCatalog(environment(empty.filePath(QStringLiteral("missing")), {})).error(),
                 QStringLiteral("No catalog in the app bundle's Catalogs folder"));
    }

    // The AppStream files of real releases against the shipped catalogs: the
    // release each names and the document it gets.
    void shippedCatalogForEachRelease_data()
    {
        QTest::addColumn<QString>("metainfo");
        QTest::addColumn<QString>("versionAnswer");
        QTest::addColumn<QRegularExpression>("reason");
        QTest::addColumn<QString>("osVersion");
        struct Release {
            const char *file;
            const char *answer; // of --version; none: the program fails
            const char *named;  // the release the file or the answer names
            const char *document;
            const char *alias = nullptr; // the release sharing the document
        };
        const Release releases[] = {
            // 43 and 44 list no release: the program's --version tells.
            {"org.gnome.Settings-43.6", "43.6", "43.6", "43.6"},
            {"org.gnome.Settings-44.4", "44.4", "44.4", "44.4"},
            {"org.gnome.Settings-44.4", "", "", "43.6"},
            {"org.gnome.Settings-45.5", "", "45.5", "45.5"},
            {"org.gnome.Settings-46.8", "", "46.8", "46.8"},
            {"org.gnome.Settings-47.7", "", "47.7", "47.7"},
            {"org.gnome.Settings-48.7", "", "48.7", "48.7"},
            // 49.9 entered its release as a second 49.8; 49 and 50 share 48's.
            {"org.gnome.Settings-49.9", "", "49.8", "48.7", "49"},
            {"org.gnome.Settings-50.4", "", "50.4", "48.7", "50"},
            {"org.kde.systemsettings-5.27.12", "", "5.27.12", "5.27.5"},
            // One document per Plasma 6 release whose modules changed; 6.3 and
            // 6.6 share the one before (aliases.json). 6.4.json was written
            // from 6.4.6 and serves 6.4.5 too.
            {"org.kde.systemsettings-6.0.5", "", "6.0.5", "6.0.5"},
            {"org.kde.systemsettings-6.1.5", "", "6.1.5", "6.1.5"},
            {"org.kde.systemsettings-6.2.5", "", "6.2.5", "6.2.5"},
            {"org.kde.systemsettings-6.3.6", "", "6.3.6", "6.2.5", "6.3"},
            {"org.kde.systemsettings-6.4.5", "", "6.4.5", "6.4.6"},
            {"org.kde.systemsettings-6.5.6", "", "6.5.6", "6.5.6"},
            {"org.kde.systemsettings-6.6.6", "", "6.6.6", "6.5.6", "6.6"},
            {"org.kde.systemsettings-6.7.4", "", "6.7.4", "6.7.4"},
        };
        for (const Release &release : releases) {
            const QString answer = QString::fromLatin1(release.answer);
            const QString named = QString::fromLatin1(release.named);
            QString reason = QStringLiteral("version is unknown");
            if (!named.isEmpty()) {
                reason =
                    (answer.isEmpty() ? QStringLiteral(".metainfo.xml") : QStringLiteral("fake-settings --version"))
                    + QStringLiteral(" names release ") + named;
                if (release.alias)
                    reason += QStringLiteral(", served by release %1's catalog").arg(QLatin1String(release.alias));
                reason = QRegularExpression::escape(reason) + QStringLiteral("(,|$| \\()");
            }
            const QString file = QString::fromLatin1(release.file);
            QTest::newRow(qPrintable(answer.isEmpty() ? file : file + QStringLiteral(", --version ") + answer))
                << file << answer << QRegularExpression(reason) << QString::fromLatin1(release.document);
        }
    }

    void shippedCatalogForEachRelease()
    {
        QFETCH(QString, metainfo);
        QFETCH(QString, versionAnswer);
        QFETCH(QRegularExpression, reason);
        QFETCH(QString, osVersion);
        QTemporaryDir bin;
        QVERIFY(bin.isValid());
        QVERIFY(writeScript(bin.filePath(QStringLiteral("fake-settings")),
                            versionAnswer.isEmpty() ? "exit 1\n"
                                                    : "echo gnome-control-center " + versionAnswer.toUtf8() + "\n"));
        const QString desktop = metainfo.startsWith(u"org.kde") ? QStringLiteral("kde") : QStringLiteral("gnome");
        CatalogChoice choice;
        const auto catalog = loadCatalog(
            oneProgram(QStringLiteral(CATALOG_RESOURCES), desktop,
                       {QStringLiteral(CATALOG_TEST_DATA "/metainfo/") + metainfo + QStringLiteral(".metainfo.xml")},
                       bin.path()),
            &choice);
        QVERIFY2(catalog.ok(), qPrintable(catalog.error()));
        QCOMPARE(catalog.value().osVersion, osVersion);
        // The release named is the newest in the file, read in full.
        QVERIFY2(choice.versionReason.contains(reason), qPrintable(choice.versionReason));
    }

    // Asking the program costs a tenth of a second at every start; its answer
    // holds until the program's file changes, and a damaged note is ignored.
    void programVersionIsRemembered()
    {
        QTemporaryDir dir;
        const QString program = dir.filePath(QStringLiteral("fake-settings"));
        const QString asked = dir.filePath(QStringLiteral("asked"));
        const auto install = [&](const QByteArray &version) {
            QFile::remove(program);
            return writeScript(program, "echo x >> '" + QFile::encodeName(asked) + "'\necho gnome-control-center "
                                            + version + "\n");
        };
        const auto versionNow = [&] {
            const auto catalog = loadCatalog(oneProgram(QStringLiteral(CATALOG_RESOURCES), QStringLiteral("gnome"), {},
                                                        dir.path(), dir.filePath(QStringLiteral("cache/version"))));
            return catalog.ok() ? catalog.value().osVersion : catalog.error();
        };
        const auto timesAsked = [&] {
            QFile file(asked);
            return file.open(QIODevice::ReadOnly) ? file.readAll().count('x') : 0;
        };
        QVERIFY(install("43.6"));
        QCOMPARE(versionNow(), u"43.6"_qs);
        QCOMPARE(versionNow(), u"43.6"_qs);
        QCOMPARE(timesAsked(), 1);
        // An update replaces the file.
        QVERIFY(install("44.4"));
        QCOMPARE(versionNow(), u"44.4"_qs);
        QCOMPARE(timesAsked(), 2);
        QVERIFY(writeFile(dir.filePath(QStringLiteral("cache/version")), "\xff\xfe garbage"));
        QCOMPARE(versionNow(), u"44.4"_qs);
        QCOMPARE(timesAsked(), 3);
    }

    // A damaged alias table is reported; the documents of their own still serve.
    void damagedAliasTableIsIgnored()
    {
        QTemporaryDir root;
        QVERIFY(QDir(root.path()).mkpath(QStringLiteral("gnome")));
        QVERIFY(writeFile(root.filePath(QStringLiteral("gnome/43.json")),
                          JSON({"osVersion": "43", "sections": [], "panes": []})));
        QVERIFY(writeFile(root.filePath(QStringLiteral("gnome/aliases.json")), JSON({"45": 43})));
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(QStringLiteral("aliases.json: .*not a release and a file name")));
        const auto catalog = loadCatalog(oneProgram(root.path(), QStringLiteral("gnome"), {}, QStringLiteral("/none")));
        QCOMPARE(catalog.value().osVersion, QStringLiteral("43"));
    }

    void fullDocumentDecodes()
    {
        const auto decoded = decodeCatalog(
            JSON({
            "osVersion": "43.6", "sections": [["wifi", "missing"]], "extra": true,
            "strings": {"clearMenu": {"table": "/t/%l/x.mo", "key": "Clear"}, "search": null},
            "panes": [{
                "id": "wifi", "name": "Wi-Fi", "nameRef": {"table": "/t/%l/x.mo", "key": "Wi-Fi"},
                "url": "settings://gnome/wifi", "children": [["hidden"]], "symbol": "network-wireless",
                "symbolBackground": [[0.1, 0.2], [0.3, 0.4]], "symbolRendering": "multicolor",
                "symbolColor": [1, 0, 0], "symbolMirrored": true, "symbolSize": 12.5, "symbolFallback": null,
                "sections": [{"items": [{"label": "Saved › Hidden", "labelRefs": [null, {"table": "t", "key": "k"}],
                                         "labelSource": "fullUserName", "kind": "sheet",
                                         "url": "settings://gnome/wifi/hidden", "bundlePath": "/b"}]}]
            }]
        }));
        QVERIFY2(decoded.ok(), qPrintable(decoded.error()));
        const Catalog &catalog = decoded.value();
        QCOMPARE(catalog.sections, (QList<QList<QString>>{{"wifi", "missing"}}));
        QCOMPARE(catalog.strings->value(QStringLiteral("clearMenu")), (StringRef{"/t/%l/x.mo", "Clear"}));
        QVERIFY(catalog.strings->contains(QStringLiteral("search")));
        QVERIFY(!catalog.strings->value(QStringLiteral("search")));

        const Pane &pane = catalog.panes.first();
        QCOMPARE(pane.nameRef, (StringRef{"/t/%l/x.mo", "Wi-Fi"}));
        QCOMPARE(pane.children, (QList<QList<QString>>{{"hidden"}}));
        IconSpec icon;
        icon.symbol = QStringLiteral("network-wireless");
        icon.symbolBackground = QList<QList<double>>{{0.1, 0.2}, {0.3, 0.4}};
        icon.symbolRendering = SymbolRendering::Multicolor;
        icon.symbolColor = QList<double>{1, 0, 0};
        icon.symbolMirrored = true;
        icon.symbolSize = 12.5;
        QCOMPARE(pane.icon, icon);

        Item item{QStringLiteral("Saved › Hidden"),
                  QList<std::optional<StringRef>>{std::nullopt, StringRef{"t", "k"}},
                  LabelSource::FullUserName,
                  Kind::Sheet,
                  QUrl(QStringLiteral("settings://gnome/wifi/hidden")),
                  {}};
        item.icon.bundlePath = QStringLiteral("/b");
        QCOMPARE(pane.sections.first(), (ItemSection{std::nullopt, std::nullopt, {item}}));
    }

    void badDocumentsFail_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("error");
        QTest::newRow("syntax") << QByteArray("{\"osVersion\": ") << QString();
        QTest::newRow("top level array") << QByteArray("[]") << QStringLiteral("expected a catalog object");
        QTest::newRow("osVersion first") << QByteArray(JSON({"sections": 1, "panes": 2}))
                                                       << QStringLiteral("missing key \"osVersion\"");
        QTest::newRow("pane without sections")
            << QByteArray(JSON({"osVersion": "1", "sections": [], "panes": [{"id": "a", "name": "A", "url": "x:a"}]}))
                                << QStringLiteral("\"panes\": [0]: pane \"a\": missing key \"sections\"");
        QTest::newRow("unknown kind") << QByteArray(JSON({"osVersion": "1", "sections": [], "panes": [{"id": "a", "name": "A", "url": "x:a",
                "sections": [{"items": [{"label": "L", "kind": "window", "url": "x:b"}]}]}]}))
             << QStringLiteral(
                    "\"panes\": [0]: pane \"a\": \"sections\": [0]: \"items\": [0]: \"kind\": unknown Kind \"window\"");
        QTest::newRow("bad url") << QByteArray(
            JSON({"osVersion": "1", "sections": [], "panes": [{"id": "a", "name": "A", "url": "http://exa mple.org", "sections": []}]}))
                  << QStringLiteral("\"panes\": [0]: pane \"a\": \"url\": expected a URL string");
        QTest::newRow("number as text") << QByteArray(JSON({"osVersion": "1", "sections": [], "panes": [{"id": "a", "name": "A", "url": "x:a", "sections": [], "symbolSize": "12"}]}))
             << QStringLiteral("\"panes\": [0]: pane \"a\": \"symbolSize\": expected a number");
        QTest::newRow("string reference without key")
            << QByteArray(JSON({"osVersion": "1", "sections": [], "panes": [], "strings": {"add": {"table": "t"}}}))
                                << QStringLiteral("\"strings\": \"add\": missing key \"key\"");
    }

    void badDocumentsFail()
    {
        QFETCH(QByteArray, document);
        QFETCH(QString, error);
        const auto decoded = decodeCatalog(document);
        QVERIFY(!decoded.ok());
        QVERIFY(!decoded.error().isEmpty());
        if (!error.isEmpty())
            QCOMPARE(decoded.error(), error);
    }

    void parentIsTheFirstListingPane()
    {
        const auto decoded = decodeCatalog(JSON({"osVersion": "1", "sections": [["b"]], "panes": [
            {"id": "a", "name": "A", "url": "x:a", "sections": [], "children": [["x"], ["c"]]},
            {"id": "b", "name": "B", "url": "x:b", "sections": [], "children": [["c"]]},
            {"id": "c", "name": "C", "url": "x:c", "sections": []},
            {"id": "c", "name": "Second C", "url": "x:c2", "sections": []}]}));
        QVERIFY2(decoded.ok(), qPrintable(decoded.error()));
        const Catalog &catalog = decoded.value();
        QCOMPARE(catalog.parent(QStringLiteral("c"))->id, QStringLiteral("a"));
        QCOMPARE(catalog.pane(QStringLiteral("c"))->name, QStringLiteral("C"));
        // Top-level sections do not make a parent.
        QVERIFY(!catalog.parent(QStringLiteral("b")));
        QVERIFY(!catalog.pane(QStringLiteral("C")));
    }
};

QTEST_GUILESS_MAIN(TestCatalogLoader)
#include "test_catalogloader.moc"
