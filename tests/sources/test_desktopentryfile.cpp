#include "sources/desktopentryfile.h"

#include <QTemporaryDir>
#include <QTest>

class TestDesktopEntryFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // GLib's order: the codeset goes first, then the territory before the
    // modifier; C last.
    void sessionLanguagesFollowTheLocale()
    {
        qputenv("LANGUAGE", "de_AT.UTF-8@euro:fr");
        QCOMPARE(sessionLanguages(), QByteArrayList({"de_AT.UTF-8@euro", "de_AT@euro", "de.UTF-8@euro", "de@euro",
                                                     "de_AT.UTF-8", "de_AT", "de.UTF-8", "de", "fr", "C"}));
        qunsetenv("LANGUAGE");
    }

    void translationFallback_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QString>("name");
        QTest::newRow("best match") << QByteArray("Name[de]=de\nName[de_AT@euro]=at-euro\nName[de_AT]=at\n")
                                    << "at-euro";
        QTest::newRow("modifier before territory") << QByteArray("Name[de_AT]=at\nName[de@euro]=euro\n") << "euro";
        QTest::newRow("language") << QByteArray("Name[de_CH]=ch\nName[de]=de\n") << "de";
        // The next language, not the untranslated name.
        QTest::newRow("unreadable translation skipped") << QByteArray("Name[de_AT]=\xff\nName[de]=de\n") << "de";
        QTest::newRow("escapes") << QByteArray("Name[de]=a\\sb\\tc\\\\d\\n") << "a b\tc\\d\n";
    }

    void translationFallback()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QString, name);
        const QByteArrayList languages{"de_AT@euro", "de@euro", "de_AT", "de", "C"};
        const auto file = DesktopEntryFile::parse("[Desktop Entry]\nName=plain\n" + keys, languages);
        QVERIFY(file);
        QCOMPARE(file->localeString("Name"), name);
    }

    void malformedFiles_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<bool>("loads");
        QTest::newRow("empty key") << QByteArray("[Desktop Entry]\n=x\n") << false;
        QTest::newRow("bad locale") << QByteArray("[Desktop Entry]\nName[d e]=x\n") << false;
        QTest::newRow("control character in group") << QByteArray("[Desktop\x01]\n[Desktop Entry]\n") << false;
        QTest::newRow("only other groups") << QByteArray("[Other]\nName=x\n") << false;
        QTest::newRow("empty group") << QByteArray("[Desktop Entry]\n") << true;
        QTest::newRow("a 1 MB line") << "[Desktop Entry]\nComment=" + QByteArray(1 << 20, 'x') + "\nName=x\n" << true;
    }

    void malformedFiles()
    {
        QFETCH(QByteArray, data);
        QFETCH(bool, loads);
        QCOMPARE(DesktopEntryFile::parse(data, {"C"}).has_value(), loads);
    }

    void valuesAsGlibReadsThem()
    {
        const auto file = DesktopEntryFile::parse("[Desktop Entry]\n"
                                                  "Name=First\nName=Second\n"
                                                  "Bad=a\\qb\n"
                                                  "Invalid=\xff\n"
                                                  "List=a;b\\;c;;d\n"
                                                  "BadList=a;\\q\n"
                                                  "True=true \n"
                                                  "One=1\n"
                                                  "Yes=yes\n",
                                                  {"C"});
        QVERIFY(file);
        QCOMPARE(file->string("Name"), u"Second"_qs);
        QCOMPARE(file->string("Bad"), u"a\\qb"_qs);
        QCOMPARE(file->string("Invalid"), std::nullopt);
        QCOMPARE(file->string("Missing"), std::nullopt);
        QCOMPARE(file->list("List"), QStringList({"a", "b;c", "", "d"}));
        QCOMPARE(file->list("BadList"), std::nullopt);
        QVERIFY(file->boolean("True") && file->boolean("One"));
        QVERIFY(!file->boolean("Yes") && !file->boolean("Missing"));
    }

    // FIFOs, devices and huge files are tried on whole folders with the
    // other hostile sources.
    void aFolderIsNotAnEntry()
    {
        QTemporaryDir dir;
        QCOMPARE(DesktopEntryFile::load(QFile::encodeName(dir.path())), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(TestDesktopEntryFile)
#include "test_desktopentryfile.moc"
