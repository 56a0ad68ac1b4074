#include "config/layoutcodec.h"
#include "config/menustate.h"
#include "jsontext.h"

#include <QJsonDocument>
#include <QTest>

namespace {

QJsonValue json(const char *text)
{
    return QJsonDocument::fromJson(QByteArray(text)).object();
}

const QUuid someId = QUuid::fromString(QStringLiteral("6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B"));

} // namespace

class TestLayoutCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Stored files name the cases exactly as written.
    void enumerationsAreStoredByName()
    {
        QCOMPARE(enumToString(FolderSort::DateModified), QStringLiteral("dateModified"));
        QCOMPARE(enumFromString<FolderColor>(u"pink"), FolderColor::Pink);
        QVERIFY(!enumFromString<SourceStyle>(u"Submenu"));
        QVERIFY(!enumFromString<SourceStyle>(u""));
    }

    void everySourceSurvivesARoundTrip_data()
    {
        QTest::addColumn<MenuSource>("source");
        QTest::addColumn<QByteArray>("expected");
        const ShortcutRef ref{QStringLiteral("A1B2C3D4-0000-4000-8000-000000000001"), QStringLiteral("Backup")};
        QTest::newRow("systemSettings") << MenuSource::systemSettings() << QByteArray(JSON({"systemSettings":{}}));
        QTest::newRow("customMenu") << MenuSource::customMenu(someId)
                                    << QByteArray(JSON({"customMenu":{"_0":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B"}}));
        QTest::newRow("applications") << MenuSource::applications() << QByteArray(JSON({"applications":{}}));
        QTest::newRow("folder") << MenuSource::folder(someId)
                                << QByteArray(JSON({"folder":{"_0":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B"}}));
        QTest::newRow("shortcuts") << MenuSource::shortcuts() << QByteArray(JSON({"shortcuts":{}}));
        QTest::newRow("shortcutFolder") << MenuSource::shortcutFolder(ref)
                                        << QByteArray(JSON({"shortcutFolder":{"_0":{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"Backup"}}}));
        QTest::newRow("shortcut") << MenuSource::shortcut(
            ref) << QByteArray(JSON({"shortcut":{"_0":{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"Backup"}}}));
        QTest::newRow("recents") << MenuSource::recents() << QByteArray(JSON({"recents":{}}));
        QTest::newRow("separator") << MenuSource::separator(someId)
                                   << QByteArray(JSON({"separator":{"_0":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B"}}));
    }

    void everySourceSurvivesARoundTrip()
    {
        QFETCH(MenuSource, source);
        QFETCH(QByteArray, expected);
        QCOMPARE(QJsonDocument(encode(source)).toJson(QJsonDocument::Compact), expected);
        const auto decoded = decode<MenuSource>(encode(source));
        QVERIFY2(decoded.ok(), qPrintable(decoded.error()));
        QCOMPARE(decoded.value(), source);
        QCOMPARE(qHash(decoded.value()), qHash(source));
    }

    void malformedSourcesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        const QString keys = QStringLiteral("Invalid number of keys found, expected one.");
        QTest::newRow("two cases") << QByteArray(
            JSON({"folder":{"_0":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B"},"recents":{}})) << keys;
        QTest::newRow("no case") << QByteArray(JSON({})) << keys;
        QTest::newRow("unknown case") << QByteArray(JSON({"trash":{}})) << keys;
        QTest::newRow("missing payload") << QByteArray(JSON({"folder":{}})) << QString();
        QTest::newRow("payload-free inner is a string") << QByteArray(JSON({"recents":"yes"})) << QString();
        QTest::newRow("shortcut without name") << QByteArray(JSON({"shortcut":{"_0":{"id":"X"}}})) << QString();
    }

    void malformedSourcesAreRefused()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        const auto decoded = decode<MenuSource>(QJsonDocument::fromJson(text).object());
        QVERIFY(!decoded.ok());
        if (!error.isEmpty())
            QCOMPARE(decoded.error(), error);
    }

    void decodingIgnoresWhatItDoesNotKnow()
    {
        // Extra keys beside the one case, and the insides of a payload-free case.
        auto source = decode<MenuSource>(json(JSON({"recents":{"_0":"ignored"},"note":"hand-written"})));
        QVERIFY(source.ok());
        QCOMPARE(source.value(), MenuSource::recents());
        // Lower-case UUIDs are read; they are written upper-case.
        source = decode<MenuSource>(json(JSON({"separator":{"_0":"6f1c2a3b-4d5e-4f60-8a7b-9c0d1e2f3a4b"}})));
        QVERIFY(source.ok());
        QCOMPARE(source.value(), MenuSource::separator(someId));
    }

    void shortcutsDifferByName()
    {
        const QString id = QStringLiteral("A1B2C3D4-0000-4000-8000-000000000001");
        QVERIFY(MenuSource::shortcut({id, QStringLiteral("One")}) != MenuSource::shortcut({id, QStringLiteral("Two")}));
        QVERIFY(MenuSource::shortcut({id, QStringLiteral("One")})
                != MenuSource::shortcutFolder({id, QStringLiteral("One")}));
    }

    // Optional keys, absent or null, read as absent and are not written.
    void stateRoundTrips()
    {
        const auto state = decodeMenuState(
            JSON({"layout":[{"source":{"recents":{}},"style":"hidden"}],
            "recentsLimit":7, "separators":null,
            "menus":[{"id":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B","name":"Work","urls":["settings://gnome/wifi"]}],
            "folders":[{"id":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B","url":"file:///home/u/","sort":"dateAdded"}]}));
        QVERIFY2(state.ok(), qPrintable(state.error()));
        QCOMPARE(state.value().recentsLimit, 7);
        QVERIFY(!state.value().separators);
        QCOMPARE(state.value().folders->first().sort, FolderSort::DateAdded);
        const CustomMenu menu = state.value().menus->first();
        QVERIFY(!menu.groupOrder && !menu.symbol && !menu.color);
        QCOMPARE(encode(menu).keys(), (QStringList{"id", "name", "urls"}));
        QCOMPARE(decodeMenuState(encodeMenuState(state.value())).value(), state.value());

        CustomMenu full = menu;
        full.groupOrder = QList{MenuItemKind::Settings, MenuItemKind::Apps};
        full.symbol = QStringLiteral("folder-symbolic");
        full.color = FolderColor::Green;
        const auto again = decode<CustomMenu>(encode(full));
        QVERIFY(again.ok());
        QCOMPARE(again.value(), full);
    }

    // One bad value, at any depth, fails the whole state.
    void badStatesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("state");
        QTest::newRow("one bad layout style") << QByteArray(
            JSON({"layout":[{"source":{"recents":{}},"style":"hidden"},{"source":{"recents":{}},"style":"sideways"}]}));
        QTest::newRow("layout entry without style") << QByteArray(JSON({"layout":[{"source":{"recents":{}}}]}));
        QTest::newRow("menu without urls")
            << QByteArray(JSON({"menus":[{"id":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B","name":"Work"}]}));
        QTest::newRow("unknown colour") << QByteArray(
            JSON({"menus":[{"id":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B","name":"W","urls":[],"color":"teal"}]}));
        QTest::newRow("folder without URL")
            << QByteArray(JSON({"folders":[{"id":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B","url":"","sort":"name"}]}));
        QTest::newRow("number as text") << QByteArray(JSON({"recentsLimit":"5"}));
        QTest::newRow("fraction") << QByteArray(JSON({"recentsLimit":2.5}));
        QTest::newRow("number as bool") << QByteArray(JSON({"showsOnlyFavoriteApps":1}));
        QTest::newRow("not a UUID") << QByteArray(JSON({"separators":["nope"]}));
        QTest::newRow("not a URL") << QByteArray(JSON({"favoriteApps":[42]}));
        QTest::newRow("object for list") << QByteArray(JSON({"menus":{}}));
        QTest::newRow("top-level array") << QByteArray(JSON([1,2,3]));
        QTest::newRow("truncated") << QByteArray("{\"layout\":[");
    }

    void badStatesAreRefused()
    {
        QFETCH(QByteArray, state);
        QVERIFY(!decodeMenuState(state).ok());
    }

    void dragsCarryTheSourceAsJson()
    {
        const DraggedSource dragged{MenuSource::folder(someId)};
        QCOMPARE(dragData(dragged),
                 QByteArray(JSON({"source":{"folder":{"_0":"6F1C2A3B-4D5E-4F60-8A7B-9C0D1E2F3A4B"}}})));
        QCOMPARE(draggedSource(dragData(dragged)).value(), dragged);
        QVERIFY(!draggedSource("garbage").ok());
    }
};

QTEST_GUILESS_MAIN(TestLayoutCodec)
#include "test_layoutcodec.moc"
