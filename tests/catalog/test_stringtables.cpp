#include "catalog/desktopentrytable.h"
#include "catalog/localization.h"
#include "catalog/motable.h"
#include "catalog/owntranslation.h"
#include "catalog/systemstrings.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

namespace {

const QString fixtureTable = QStringLiteral(FIXTURE_LOCALE_DIR "/%l/LC_MESSAGES/quillon-fixture.mo");
const QString desktopFixture = QStringLiteral(CATALOG_TEST_DATA "/kcm_fixture.desktop");
const QString gnomeTable = QStringLiteral("/usr/share/locale/%l/LC_MESSAGES/gnome-control-center-2.0.mo");

const QString germanMo = QStringLiteral(FIXTURE_LOCALE_DIR "/de/LC_MESSAGES/quillon-fixture.mo");

// The text under the key in the localization serving the languages;
// "(none)" when none serves them, "(error)" when the table cannot be read.
QString lookUp(const QString &path, const QStringList &languages, const QString &key)
{
    const auto table = loadStringTable(path, languages);
    if (!table)
        return QStringLiteral("(error)");
    return table.value() ? table.value()->value(key) : QStringLiteral("(none)");
}

// A message catalog written by hand, in either byte order, so that single
// header words can be damaged.
struct MoImage {
    QByteArray data;
    bool bigEndian = false;

    void setWord(qsizetype offset, quint32 value)
    {
        char *at = data.data() + offset;
        bigEndian ? qToBigEndian(value, at) : qToLittleEndian(value, at);
    }

    static MoImage make(const QList<std::pair<QByteArray, QByteArray>> &entries, bool bigEndian)
    {
        MoImage image{QByteArray(28 + entries.size() * 16, '\0'), bigEndian};
        const qsizetype originals = 28;
        const qsizetype translations = originals + entries.size() * 8;
        image.setWord(0, 0x950412de);
        image.setWord(8, quint32(entries.size()));
        image.setWord(12, quint32(originals));
        image.setWord(16, quint32(translations));
        for (qsizetype i = 0; i < entries.size(); ++i) {
            for (const auto &[table, text] :
                 {std::pair{originals, entries[i].first}, {translations, entries[i].second}}) {
                image.setWord(table + i * 8, quint32(text.size()));
                image.setWord(table + i * 8 + 4, quint32(image.data.size()));
                image.data.append(text).append('\0');
            }
        }
        return image;
    }
};

} // namespace

class TestStringTables : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void moReaderReadsMsgfmtOutput()
    {
        QFile file(germanMo);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray data = file.readAll();
        const auto table = parseMoCatalog(data);
        QVERIFY2(table.ok(), qPrintable(table.error()));
        QCOMPARE(table.value().value(QStringLiteral("Wi-Fi")), QStringLiteral("WLAN"));
        QCOMPARE(table.value().value(QStringLiteral("keybinding\u0004Search")), QStringLiteral("Suchen"));
        QCOMPARE(table.value().value(QStringLiteral("%d hour")), QStringLiteral("%d Stunde"));
        QVERIFY(!table.value().contains(QStringLiteral("Untranslated")));
        QVERIFY(!table.value().contains(QString()));
        // The last string ends at the last byte, so every shorter copy breaks
        // something.
        for (qsizetype size = 0; size < data.size(); ++size)
            QVERIFY2(!parseMoCatalog(data.left(size)).ok(), qPrintable(QString::number(size)));
    }

    // Hand-made catalogs in either byte order: read when whole, refused
    // when a word of the header or of a string's descriptor is damaged.
    void handMadeMoFiles_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<bool>("readable");
        for (const bool bigEndian : {false, true}) {
            const auto good =
                MoImage::make({{"", "header"}, {"Blue", "Blau"}, {"One\0Many", "Eins\0Viele"}}, bigEndian);
            const char *order = bigEndian ? "big-endian" : "little-endian";
            const auto damaged = [&good](qsizetype offset, quint32 value) {
                auto image = good;
                image.setWord(offset, value);
                return image.data;
            };
            QTest::addRow("%s", order) << good.data << true;
            QTest::addRow("%s, bad magic", order) << damaged(0, 0x12345678) << false;
            QTest::addRow("%s, revision 2", order) << damaged(4, 0x20000) << false;
            QTest::addRow("%s, huge count", order) << damaged(8, 0xffffffff) << false;
            QTest::addRow("%s, table beyond the end", order) << damaged(16, 0xfffffff0) << false;
            QTest::addRow("%s, hash table beyond the end", order) << damaged(20, 1000) << false;
            QTest::addRow("%s, string offset beyond the end", order) << damaged(28 + 4, 0xfffffffe) << false;
            QTest::addRow("%s, string length wraps", order) << damaged(28, 0xffffffff) << false;
            QTest::addRow("%s, string without its NUL", order) << damaged(28, 2) << false;
        }
    }

    void handMadeMoFiles()
    {
        QFETCH(QByteArray, data);
        QFETCH(bool, readable);
        const auto table = parseMoCatalog(data);
        QCOMPARE(table.ok(), readable);
        if (readable)
            QCOMPARE(table.value(), (StringTable{{"Blue", "Blau"}, {"One", "Eins"}}));
        else
            QVERIFY(!table.error().isEmpty());
    }

    void localizationChoice_data()
    {
        QTest::addColumn<QStringList>("available");
        QTest::addColumn<QStringList>("languages");
        QTest::addColumn<QString>("chosen");
        const QStringList locales{"de", "fr", "pt", "pt_BR", "sr", "sr@latin", "zh_CN", "en_GB"};
        QTest::newRow("territory falls back") << locales << QStringList{"de_AT"} << "de";
        QTest::newRow("Qt form") << locales << QStringList{"de-AT"} << "de";
        QTest::newRow("encoding ignored") << locales << QStringList{"de_DE.UTF-8"} << "de";
        QTest::newRow("exact territory first") << locales << QStringList{"pt_BR"} << "pt_BR";
        QTest::newRow("modifier") << locales << QStringList{"sr@latin"} << "sr@latin";
        QTest::newRow("script as modifier") << locales << QStringList{"sr-Latn-RS"} << "sr@latin";
        QTest::newRow("script dropped") << locales << QStringList{"zh-Hans-CN"} << "zh_CN";
        QTest::newRow("first served language wins") << locales << QStringList{"ja", "C", "fr_CA", "de"} << "fr";
        QTest::newRow("no general form of a territory") << locales << QStringList{"en-US", "en"} << "";
        QTest::newRow("case and separators") << QStringList{"PT-br"} << QStringList{"pt_BR"} << "PT-br";
        QTest::newRow("nothing served") << locales << QStringList{"C", "POSIX", ""} << "";
    }

    void localizationChoice()
    {
        QFETCH(QStringList, available);
        QFETCH(QStringList, languages);
        QFETCH(QString, chosen);
        QCOMPARE(preferredLocalization(available, languages).value_or(QString()), chosen);
    }

    void languageListStartsWithLanguageVariable()
    {
        const QByteArray saved = qgetenv("LANGUAGE");
        qputenv("LANGUAGE", "de_AT:fr::");
        const QStringList languages = preferredLanguages();
        qputenv("LANGUAGE", saved);
        QCOMPARE(languages.mid(0, 2), (QStringList{"de_AT", "fr"}));
    }

    void desktopEntryTables()
    {
        const auto german = loadStringTable(desktopFixture, {"de_CH"});
        QVERIFY2(german.ok(), qPrintable(german.error()));
        QCOMPARE(*german.value(),
                 (StringTable{{"Name", "Anzeige-Einrichtung"}, {"Comment", "Bildschirme\nverwalten"}}));
        QCOMPARE(lookUp(desktopFixture, {"pt_BR"}, "Name"), QStringLiteral("Configuração do Monitor"));
        // Localizations of other groups do not count.
        QCOMPARE(lookUp(desktopFixture, {"fr"}, "Name"), QStringLiteral("(none)"));
        QCOMPARE(lookUp(QStringLiteral(CATALOG_TEST_DATA "/not_an_entry.desktop"), {"de"}, "Name"),
                 QStringLiteral("(error)"));
        QCOMPARE(lookUp(QStringLiteral("/nonexistent/x.desktop"), {"de"}, "Name"), QStringLiteral("(error)"));
    }

    void pluginMetadataTables()
    {
        const QString plugin = QStringLiteral(FIXTURE_PLUGIN_DIR "/plasma/kcms/systemsettings/kcm_fixture.so");
        const auto german = loadStringTable(plugin, {"de_CH"});
        QVERIFY2(german.ok(), qPrintable(german.error()));
        QCOMPARE(*german.value(),
                 (StringTable{{"Name", "Anzeige-Einrichtung"}, {"Description", "Bildschirme verwalten"}}));
        // An empty translation is none, so French has no localization.
        QCOMPARE(lookUp(plugin, {"fr"}, "Name"), QStringLiteral("(none)"));
        // Reading the metadata ran none of the plugin's code.
        QVERIFY(!qEnvironmentVariableIsSet("QUILLON_FIXTURE_PLUGIN_LOADED"));

        // %p stands for each of Qt's plugin folders.
        const QString anywhere = QStringLiteral("%p/plasma/kcms/systemsettings/kcm_fixture.so");
        QCOMPARE(lookUp(anywhere, {"de"}, "Name"), QStringLiteral("(error)"));
        QCoreApplication::addLibraryPath(QStringLiteral(FIXTURE_PLUGIN_DIR));
        QCOMPARE(lookUp(anywhere, {"pt_BR"}, "Name"), QStringLiteral("Configuração do monitor"));
        QCoreApplication::removeLibraryPath(QStringLiteral(FIXTURE_PLUGIN_DIR));

        QTemporaryDir dir;
        QFile notAPlugin(dir.filePath(QStringLiteral("kcm_text.so")));
        QVERIFY(notAPlugin.open(QIODevice::WriteOnly) && notAPlugin.write("Name[de]=Anzeige\n") > 0);
        notAPlugin.close();
        QCOMPARE(lookUp(notAPlugin.fileName(), {"de"}, "Name"), QStringLiteral("(error)"));
    }

    void gettextTablesFollowTheLanguage()
    {
        QCOMPARE(lookUp(fixtureTable, {"fr_FR"}, "Displays"), QStringLiteral("Écrans"));
        QCOMPARE(lookUp(fixtureTable, {"it", "de_AT"}, "Displays"), QStringLiteral("Bildschirme"));
        QCOMPARE(lookUp(fixtureTable, {"it"}, "Displays"), QStringLiteral("(none)"));
        QCOMPARE(lookUp(QStringLiteral("/nonexistent/%l/x.mo"), {"de"}, "Displays"), QStringLiteral("(error)"));
        // %l must be a whole folder name.
        QCOMPARE(lookUp(QStringLiteral(FIXTURE_LOCALE_DIR "/x%l/LC_MESSAGES/quillon-fixture.mo"), {"de"}, "Displays"),
                 QStringLiteral("(error)"));
    }

    void unreadableTablesAreLoggedOnce()
    {
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("de/LC_MESSAGES")));
        QFile broken(dir.filePath(QStringLiteral("de/LC_MESSAGES/broken.mo")));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a message catalog at all");
        broken.close();
        const QString table = dir.path() + QStringLiteral("/%l/LC_MESSAGES/broken.mo");

        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QTest::ignoreMessage(QtWarningMsg, qPrintable(QStringLiteral("System string table %1 could not be read: %2: "
                                                                     "not a message catalog (bad magic number)")
                                                          .arg(table, broken.fileName())));
        SystemStrings strings(std::nullopt, {"de"});
        const StringRef ref{table, QStringLiteral("Blue")};
        // The fallback still goes through the own translation.
        QCOMPARE(strings.resolve(QStringLiteral("Blue"), ref), QStringLiteral("Blau"));
        // The failure is remembered: no second read, no second log line,
        // even once the file has become readable.
        QVERIFY(broken.remove());
        QVERIFY(QFile::copy(germanMo, broken.fileName()));
        QVERIFY(!strings.table(table));
        QCOMPARE(strings.resolve(QStringLiteral("Red"), ref), QStringLiteral("Rot"));
    }

    void systemTextsLoseTheirEllipsis()
    {
        const SystemStrings::StringsMap refs{{"settings", StringRef{fixtureTable, "Settings…"}},
                                             {"clearMenu", StringRef{fixtureTable, "Clear Menu"}},
                                             {"search", StringRef{fixtureTable, "Search"}},
                                             {"add", std::nullopt},
                                             {"remove", StringRef{fixtureTable, "No such key"}}};
        SystemStrings strings(refs, {"de"});
        QCOMPARE(strings.text(SystemString::Settings), QStringLiteral("Einstellungen "));
        QCOMPARE(strings.text(SystemString::ClearMenu), QStringLiteral("Menü leeren"));
        QCOMPARE(strings.text(SystemString::Search), QStringLiteral("Suche"));
        // Null, missing and unknown references fall back to the own translation.
        QCOMPARE(strings.text(SystemString::Add), QStringLiteral("Hinzufügen"));
        QCOMPARE(strings.text(SystemString::Remove), QStringLiteral("Entfernen"));
        QCOMPARE(strings.text(SystemString::Graphite), QStringLiteral("Graphit"));
    }

    void ownTranslationsCoverEveryInterfaceString()
    {
        SystemStrings english(std::nullopt, {"en_US"});
        SystemStrings german(std::nullopt, {"de_DE"});
        const QStringList sameInGerman{"Name", "%@: %@", "Orange"};
        for (const SystemString string : allCases<SystemString>()) {
            QCOMPARE(english.text(string), englishText(string));
            if (!sameInGerman.contains(englishText(string)))
                QVERIFY2(german.text(string) != englishText(string), qPrintable(englishText(string)));
        }
    }

    void applicationTranslationFollowsTheLanguage()
    {
        QVERIFY(installOwnTranslation({"ja", "de_AT"}));
        QCOMPARE(QCoreApplication::translate("SystemStrings", "Clear Menu"), QStringLiteral("Menü leeren"));
        // A later choice replaces the earlier one.
        QVERIFY(!installOwnTranslation({"en_GB"}));
        QCOMPARE(QCoreApplication::translate("SystemStrings", "Clear Menu"), QStringLiteral("Clear Menu"));
    }

    void catalogTextsResolveLevelByLevel()
    {
        SystemStrings strings(std::nullopt, {"de"});
        Pane pane;
        pane.name = QStringLiteral("Wi-Fi");
        QCOMPARE(strings.paneName(pane), QStringLiteral("Wi-Fi"));
        pane.nameRef = StringRef{fixtureTable, QStringLiteral("Wi-Fi")};
        QCOMPARE(strings.paneName(pane), QStringLiteral("WLAN"));

        QVERIFY(!strings.sectionTitle(ItemSection{std::nullopt, StringRef{fixtureTable, "Wi-Fi"}, {}}));
        QCOMPARE(strings.sectionTitle(ItemSection{QStringLiteral("Displays"), std::nullopt, {}}),
                 QStringLiteral("Displays"));

        Item item;
        item.label = QStringLiteral("Wi-Fi › Displays › Remove");
        item.labelRefs = QList<std::optional<StringRef>>{std::nullopt, StringRef{fixtureTable, "Displays"}};
        QCOMPARE(strings.itemLabel(item), QStringLiteral("Wi-Fi › Bildschirme › Entfernen"));
        item.label.clear();
        item.labelSource = LabelSource::FullUserName;
        QCOMPARE(strings.itemLabel(item), fullUserName());
        QVERIFY(!fullUserName().isEmpty());
    }

    void installedGnomeSettingsTranslations()
    {
        if (!QFile::exists(QString(gnomeTable).replace(QStringLiteral("%l"), QStringLiteral("de"))))
            QSKIP("gnome-control-center-data is not installed");
        const StringRef wifi{gnomeTable, QStringLiteral("Wi-Fi")};
        const StringRef displays{gnomeTable, QStringLiteral("Displays")};
        SystemStrings german(std::nullopt, {"de-AT"});
        QCOMPARE(german.resolve(QStringLiteral("Wi-Fi"), wifi), QStringLiteral("WLAN"));
        QCOMPARE(german.resolve(QStringLiteral("Displays"), displays), QStringLiteral("Bildschirme"));
        // The French file writes a soft hyphen into the word.
        SystemStrings french(std::nullopt, {"fr"});
        QCOMPARE(french.resolve(QStringLiteral("Displays"), displays), QStringLiteral("Éc\u00ADrans"));
    }
};

QTEST_GUILESS_MAIN(TestStringTables)
#include "test_stringtables.moc"
