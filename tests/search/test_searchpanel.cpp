#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "fakelauncher.h"
#include "fixtures.h"
#include "platform/opener.h"
#include "search/searchpanel.h"
#include "search/searchpanelcontroller.h"
#include "search/searchpanelmodel.h"
#include "search/searchpanelview.h"
#include "sources/shortcutlibrary.h"

#include <QLineEdit>
#include <QListView>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

QUrl appURL(const QString &name)
{
    return QUrl::fromLocalFile(QStringLiteral("/apps/%1.desktop").arg(name));
}

} // namespace

class TestSearchPanel : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    TestCatalog m_settings;
    std::unique_ptr<ShortcutLibrary> m_shortcuts;
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<MenuStore> m_store;
    FakeLauncher m_launcher;
    std::unique_ptr<Opener> m_opener;
    std::unique_ptr<SearchPanelController> m_controller;
    QList<App> m_apps;
    int m_scans = 0;

    const ContentSources &sources()
    {
        return m_settings.sources(*m_store, *m_shortcuts, [this] {
            ++m_scans;
            return QList<AppEntry>(m_apps.begin(), m_apps.end());
        });
    }

    QLineEdit *field() const { return m_controller->view()->field(); }
    QUrl selection() const { return m_controller->model()->selection().value_or(QUrl()); }

private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        qputenv("XDG_DATA_HOME", m_dir.filePath(QStringLiteral("data")).toUtf8());
        qputenv("XDG_DATA_DIRS", m_dir.filePath(QStringLiteral("none")).toUtf8());
        m_settings.set({{QStringLiteral("notifications"), QStringLiteral("network")}},
                       {testPane(QStringLiteral("notifications"), QStringLiteral("Notifications")),
                        testPane(QStringLiteral("network"), QStringLiteral("Network"))});
        m_shortcuts = std::make_unique<ShortcutLibrary>(m_dir.filePath(QStringLiteral("no-tool")));
        m_opener = std::make_unique<Opener>(m_launcher, [](const QString &) {});
        for (const QString &name :
             {QStringLiteral("Notes"), QStringLiteral("Numbers"), QStringLiteral("Nuke"), QStringLiteral("Maps")})
            m_apps.append(App{name, appURL(name), {}});
        for (int i = 1; i <= 14; ++i)
            m_apps.append(App{QStringLiteral("Atlas %1").arg(i), appURL(QStringLiteral("atlas%1").arg(i)), {}});
    }

    void cleanupTestCase()
    {
        // Every showing asks the (missing) tool for shortcuts; let the last ask end.
        QTRY_VERIFY(!m_shortcuts->isRefreshing());
    }

    void init()
    {
        m_controller.reset();
        m_store.reset();
        m_preferences =
            std::make_unique<Preferences>(m_dir.filePath(QStringLiteral("%1.conf").arg(QTest::currentTestFunction())));
        m_store = std::make_unique<MenuStore>(*m_preferences);
        m_launcher.calls.clear();
        m_launcher.witness = [this] {
            return QStringLiteral("shown=%1 recent=%2")
                .arg(m_controller->isShown())
                .arg(m_store->recents().value(0).fileName());
        };
        m_scans = 0;
        m_controller = std::make_unique<SearchPanelController>(
            SearchPanelController::Services{sources(), *m_shortcuts, *m_opener});
    }

    void selectionFollowsItsURLAcrossSearches()
    {
        SearchPanelModel model(sources());
        QCOMPARE(model.limit(), 12);
        model.setQuery(QStringLiteral("n"));
        QCOMPARE(model.groups().size(), 2);
        QCOMPARE(model.selection(), appURL(QStringLiteral("Notes")));
        model.moveSelection(+1);
        model.moveSelection(+1);
        QCOMPARE(model.selection(), appURL(QStringLiteral("Nuke")));

        // Still found, though no longer first: kept.
        model.setQuery(QStringLiteral("nu"));
        QCOMPARE(model.results().size(), 2);
        QCOMPARE(model.selection(), appURL(QStringLiteral("Nuke")));
        // Gone: the first result instead.
        model.setQuery(QStringLiteral("num"));
        QCOMPARE(model.selection(), appURL(QStringLiteral("Numbers")));
        // Nothing found, or nothing typed but blanks: nothing to select or move.
        for (const QString &query : {QStringLiteral("zzz"), QStringLiteral("   ")}) {
            model.setQuery(query);
            QVERIFY(model.groups().isEmpty());
            QVERIFY(!model.selection());
            model.moveSelection(+1);
            QVERIFY(!model.selection());
        }
    }

    void movingStopsAtBothEndsAndCrossesGroups()
    {
        SearchPanelModel model(sources());
        model.setQuery(QStringLiteral("n"));
        // Notes, Numbers, Nuke | Notifications, Network
        model.moveSelection(-1);
        QCOMPARE(model.selection(), appURL(QStringLiteral("Notes")));
        for (int i = 0; i < 3; ++i)
            model.moveSelection(+1);
        QCOMPARE(model.selection(), QUrl(QStringLiteral("settings://gnome/notifications")));
        for (int i = 0; i < 5; ++i)
            model.moveSelection(+1);
        QCOMPARE(model.selection(), QUrl(QStringLiteral("settings://gnome/network")));
        for (int i = 0; i < 9; ++i)
            model.moveSelection(-1);
        QCOMPARE(model.selection(), appURL(QStringLiteral("Notes")));
    }

    void onlyTheFiveKeysAreTaken()
    {
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("nu"));
        QCOMPARE(field()->text(), QStringLiteral("nu"));
        QCOMPARE(m_controller->model()->query(), QStringLiteral("nu"));
        QTest::keyClick(field(), Qt::Key_Down);
        QCOMPARE(selection(), appURL(QStringLiteral("Nuke")));
        QTest::keyClick(field(), Qt::Key_Up);
        QCOMPARE(selection(), appURL(QStringLiteral("Numbers")));
        QCOMPARE(field()->text(), QStringLiteral("nu"));

        // Return with nothing selected: taken, and the panel stays.
        QTest::keyClicks(field(), QStringLiteral("zz"));
        QTest::keyClick(field(), Qt::Key_Return);
        QVERIFY(m_controller->isShown());
        QVERIFY(m_launcher.calls.isEmpty());

        QTest::keyClick(field(), Qt::Key_Escape);
        QVERIFY(!m_controller->isShown());
    }

    void openingClosesThenRecordsThenOpens_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("Return") << int(Qt::Key_Return) << int(Qt::NoModifier);
        QTest::newRow("keypad Enter") << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
    }

    void openingClosesThenRecordsThenOpens()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("nuk"));
        QTest::keyClick(field(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(m_launcher.calls,
                 QStringList{QStringLiteral("launch /apps/Nuke.desktop shown=0 recent=Nuke.desktop")});
        QVERIFY(!m_controller->isShown());
    }

    void clickingARowOpensIt()
    {
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("n"));
        QListView *list = m_controller->view()->results();
        // Row 0 is the group's heading: a click there opens nothing.
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(0, 0)).center());
        QVERIFY(m_controller->isShown());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(2, 0)).center());
        QCOMPARE(m_launcher.calls,
                 QStringList{QStringLiteral("launch /apps/Numbers.desktop shown=0 recent=Numbers.desktop")});
    }

    void theBodyHangsFromAFixedTopEdge()
    {
        m_controller->show();
        SearchPanel *panel = m_controller->panel();
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const QRect empty = panel->bodyGeometry();
        QCOMPARE(empty.topLeft(), searchPanelOrigin(screen, 680));
        QCOMPARE(empty.size(), QSize(680, 72));

        // Grows with the results, the list no taller than its cap.
        QTest::keyClicks(field(), QStringLiteral("atlas"));
        QCOMPARE(m_controller->model()->results().size(), 12);
        QCOMPARE(panel->bodyGeometry().top(), empty.top());
        QCOMPARE(panel->bodyGeometry().height(), 72 + 1 + 460);

        QTest::keyClicks(field(), QStringLiteral(" 13"));
        const QRect one = panel->bodyGeometry();
        QCOMPARE(one.topLeft(), empty.topLeft());
        QVERIFY(one.height() > 72 && one.height() < 72 + 1 + 460);

        field()->clear();
        QCOMPARE(panel->bodyGeometry(), empty);
    }

    void dismissals()
    {
        // The hot key again closes it.
        m_controller->toggle();
        QVERIFY(m_controller->isShown());
        m_controller->toggle();
        QVERIFY(!m_controller->isShown());

        // A click inside keeps it; a click in another window closes it.
        m_controller->show();
        QTest::mouseClick(field(), Qt::LeftButton);
        QVERIFY(m_controller->isShown());
        QWidget other;
        other.show();
        QTest::mouseClick(&other, Qt::LeftButton);
        QVERIFY(!m_controller->isShown());

        // Going to another window closes it.
        m_controller->show();
        QTRY_VERIFY(m_controller->panel()->isActiveWindow());
        other.activateWindow();
        QTRY_VERIFY(!m_controller->isShown());
    }

    void everyShowingStartsAfresh()
    {
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("no"));
        QTest::keyClicks(field(), QStringLiteral("t"));
        QCOMPARE(m_scans, 1);
        QPointer<SearchPanel> first = m_controller->panel();
        m_controller->close();
        QTRY_VERIFY(first.isNull());

        m_controller->show();
        QVERIFY(field()->text().isEmpty());
        QVERIFY(m_controller->model()->groups().isEmpty());
        QTest::keyClicks(field(), QStringLiteral("no"));
        QCOMPARE(m_scans, 2);
    }
};

QTEST_MAIN(TestSearchPanel)
#include "test_searchpanel.moc"
