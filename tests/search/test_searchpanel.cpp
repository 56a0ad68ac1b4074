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
#include "search/searchpanelnotice.h"
#include "search/searchpanelrows.h"
#include "search/searchpanelview.h"
#include "sources/menutoplevel.h"
#include "sources/shortcutlibrary.h"

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

QUrl appURL(const QString &name)
{
    return QUrl::fromLocalFile(QStringLiteral("/apps/%1.desktop").arg(name));
}

// A menu entry as a person reads it: "Title ›" for a submenu, "Title!" for a
// command, "---" for a line, "[Title]" for a heading.
QString described(const MenuEntry &entry)
{
    if (const auto *item = std::get_if<OpenableEntry>(&entry))
        return item->enabled ? item->title : item->title + QStringLiteral(" (disabled)");
    if (const auto *submenu = std::get_if<SubmenuEntry>(&entry))
        return submenu->title + QStringLiteral(" \u203a");
    if (const auto *section = std::get_if<SectionEntry>(&entry))
        return QLatin1Char('[') + section->title + QLatin1Char(']');
    if (const auto *command = std::get_if<CommandEntry>(&entry))
        return command->title + QLatin1Char('!');
    return QStringLiteral("---");
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
    const MenuBrowser &browser() const { return *m_controller->model()->browser(); }
    QString selectedEntry() const { return described(browser().entries().at(browser().selected().value())); }

    // Applications as a submenu, settings inline, shortcuts hidden, a line,
    // the recents as a submenu and a folder that is gone.
    void layOutMenu()
    {
        m_store->setStyle(SourceStyle::Inline, MenuSource::systemSettings());
        m_store->setStyle(SourceStyle::Hidden, MenuSource::shortcuts());
        m_store->addSeparator();
        m_store->move({MenuSource::separator(m_store->separators().first())}, MenuSource::recents());
        m_store->addFolder(QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("vanished/"))));
    }

    // The level shown: its path, then its entries.
    QStringList menuShown() const
    {
        QStringList lines{browser().path().join(QLatin1Char('/'))};
        for (const MenuEntry &entry : browser().entries())
            lines.append(described(entry));
        return lines;
    }

    void clickRow(int row) const
    {
        QListView *list = m_controller->view()->results();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualRect(list->model()->index(row, 0)).center());
    }

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

    void selectionFollowsItsURLAndStopsAtTheEnds()
    {
        SearchPanelModel model(sources());
        model.setQuery(QStringLiteral("n"));
        QCOMPARE(model.groups().size(), 2);
        QCOMPARE(model.selection(), appURL(QStringLiteral("Notes")));
        // Notes, Numbers, Nuke | Notifications, Network: moves stop at both
        // ends and cross from one group to the next.
        model.moveSelection(-1);
        QCOMPARE(model.selection(), appURL(QStringLiteral("Notes")));
        for (int i = 0; i < 9; ++i)
            model.moveSelection(+1);
        QCOMPARE(model.selection(), QUrl(QStringLiteral("settings://gnome/network")));
        model.moveSelection(-1);
        model.moveSelection(-1);
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

    void keysAndClicksOnResults()
    {
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("nu"));
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
        QTest::keyClick(field(), Qt::Key_Escape);
        QVERIFY(!m_controller->isShown());
        QVERIFY(m_launcher.calls.isEmpty());

        // Return, keypad Enter and a click open a result: the panel closes
        // first, then the item is recorded, then opened.
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("nuk"));
        QTest::keyClick(field(), Qt::Key_Return);
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("num"));
        QTest::keyClick(field(), Qt::Key_Enter, Qt::KeypadModifier);
        m_controller->show();
        QTest::keyClicks(field(), QStringLiteral("n"));
        // Row 0 is the group's heading: a click there opens nothing.
        clickRow(0);
        QVERIFY(m_controller->isShown());
        clickRow(1);
        QCOMPARE(m_launcher.calls,
                 (QStringList{QStringLiteral("launch /apps/Nuke.desktop shown=0 recent=Nuke.desktop"),
                              QStringLiteral("launch /apps/Numbers.desktop shown=0 recent=Numbers.desktop"),
                              QStringLiteral("launch /apps/Notes.desktop shown=0 recent=Notes.desktop")}));
        QVERIFY(!m_controller->isShown());
    }

    void theBodyHangsFromAFixedTopEdge()
    {
        m_controller->show();
        SearchPanel *panel = m_controller->panel();
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const SearchPanelGeometry geometry = searchPanelGeometry(screen, 680, panel->margin(), 73, 460);
        const QRect empty = panel->bodyGeometry();
        QCOMPARE(empty.topLeft(), geometry.bodyTopLeft);
        QCOMPARE(empty.size(), QSize(680, 72));

        // Grows with the results, the list no taller than its cap here.
        QTest::keyClicks(field(), QStringLiteral("atlas"));
        QCOMPARE(m_controller->model()->results().size(), 12);
        QCOMPARE(panel->bodyGeometry().top(), empty.top());
        QCOMPARE(panel->bodyGeometry().height(), 72 + 1 + geometry.maxResultsHeight);

        QTest::keyClicks(field(), QStringLiteral(" 13"));
        const QRect one = panel->bodyGeometry();
        QCOMPARE(one.topLeft(), empty.topLeft());
        QVERIFY(one.height() > 72 && one.height() < 72 + 1 + geometry.maxResultsHeight);

        field()->clear();
        QCOMPARE(panel->bodyGeometry(), empty);
    }

    void thePanelStaysOnTheScreen_data()
    {
        QTest::addColumn<QRect>("screen");
        QTest::addColumn<int>("fixedHeight");
        QTest::newRow("laptop") << QRect(0, 0, 1280, 800) << 73;
        QTest::newRow("laptop, with a notice") << QRect(0, 0, 1280, 800) << 73 + 150;
        QTest::newRow("small") << QRect(0, 0, 800, 600) << 73;
        QTest::newRow("wide and low, right of another") << QRect(1280, 30, 1024, 400) << 73;
        QTest::newRow("tiny, with a notice") << QRect(0, 0, 640, 260) << 73 + 100;
        QTest::newRow("above another") << QRect(0, -1080, 1920, 1080) << 73;
    }

    void thePanelStaysOnTheScreen()
    {
        QFETCH(QRect, screen);
        QFETCH(int, fixedHeight);
        constexpr int margin = 28;
        const SearchPanelGeometry geometry = searchPanelGeometry(screen, 680, margin, fixedHeight, 460);
        QVERIFY(geometry.maxResultsHeight >= 0 && geometry.maxResultsHeight <= 460);
        const QRect tallest(geometry.bodyTopLeft, QSize(680, fixedHeight + geometry.maxResultsHeight));
        QVERIFY2(tallest.top() >= screen.top() + margin, qPrintable(QString::number(tallest.top())));
        QVERIFY2(tallest.bottom() + margin <= screen.bottom(), qPrintable(QString::number(tallest.bottom())));
        QCOMPARE(tallest.center().x(), screen.center().x());
        // Where there is room, a fifth of the way down as ever, and a list
        // of at least three rows.
        if (screen.height() >= 600) {
            QCOMPARE(tallest.top(), screen.top() + screen.height() / 5);
            QVERIFY(geometry.maxResultsHeight >= 3 * SearchPanelDelegate::rowHeight);
        }
        if (screen.height() == 800 && fixedHeight == 73)
            QCOMPARE(geometry.maxResultsHeight, 460);
    }

    void aReservedWindowKeepsItsSizeAsTheBodyGrows()
    {
        // As on Wayland: the compositor places the window once, by its size.
        SearchPanel panel(true);
        panel.reserveBodyHeight(73 + 300);
        panel.resizeBody(QSize(680, 72));
        const QSize window = panel.size();
        QCOMPARE(window, QSize(680 + 2 * panel.margin(), 73 + 300 + 2 * panel.margin()));
        QCOMPARE(panel.bodyRect(), QRect(panel.margin(), panel.margin(), 680, 72));
        panel.resizeBody(QSize(680, 72 + 1 + 200));
        QCOMPARE(panel.size(), window);
        QCOMPARE(panel.bodyRect().top(), panel.margin());
        QCOMPARE(panel.bodyRect().height(), 273);
        // Only the body and its shadow take clicks.
        QCOMPARE(panel.windowHandle()->mask(), QRegion(0, 0, window.width(), 273 + 2 * panel.margin()));
    }

    void browsingTheMenuWithTheKeyboard()
    {
        layOutMenu();
        int quits = 0;
        m_controller->showMenu({CommandEntry{QStringLiteral("Settings…"), [] {}},
                                CommandEntry{QStringLiteral("Quit Quillon"), [&quits] { ++quits; }}});
        const QString apps = sources().title(MenuSource::applications()) + QStringLiteral(" \u203a");
        const QString recents = sources().title(MenuSource::recents()) + QStringLiteral(" \u203a");
        QVERIFY(m_controller->model()->isBrowsing());
        QCOMPARE(menuShown(),
                 (QStringList{QStringLiteral("Quillon"), apps, QStringLiteral("---"), QStringLiteral("Notifications"),
                              QStringLiteral("Network"), QStringLiteral("---"), recents,
                              QStringLiteral("vanished (disabled)"), QStringLiteral("---"),
                              QStringLiteral("Settings…!"), QStringLiteral("Quit Quillon!")}));
        // Nothing was read for the submenus yet.
        QCOMPARE(m_scans, 0);
        QCOMPARE(selectedEntry(), apps);
        // The list shows where this is, then the entries.
        QListView *list = m_controller->view()->results();
        QCOMPARE(list->model()->index(0, 0).data().toString(), QStringLiteral("Quillon"));
        QCOMPARE(list->model()->index(1, 0).data(SearchPanelRows::IsSelectedRole).toBool(), true);

        // Into the applications, filled now and only once.
        QTest::keyClick(field(), Qt::Key_Right);
        QCOMPARE(m_scans, 1);
        QCOMPARE(browser().path(),
                 (QStringList{QStringLiteral("Quillon"), sources().title(MenuSource::applications())}));
        QCOMPARE(list->model()->index(0, 0).data().toString(),
                 QStringLiteral("Quillon  \u203a  ") + sources().title(MenuSource::applications()));
        const QString firstApp = selectedEntry();
        QTest::keyClick(field(), Qt::Key_Down);
        const QString secondApp = selectedEntry();
        QVERIFY(secondApp != firstApp);
        QTest::keyClick(field(), Qt::Key_Left);
        QCOMPARE(browser().depth(), 0);
        QCOMPARE(selectedEntry(), apps);
        QTest::keyClick(field(), Qt::Key_Return);
        QCOMPARE(m_scans, 1);
        QCOMPARE(selectedEntry(), secondApp); // where it was left
        QTest::keyClick(field(), Qt::Key_Backspace);
        QCOMPARE(browser().depth(), 0);
        // Left at the top stays there; Down skips the line and the disabled
        // folder, and stops at the last command.
        QTest::keyClick(field(), Qt::Key_Left);
        QVERIFY(m_controller->isShown());
        for (int i = 0; i < 9; ++i)
            QTest::keyClick(field(), Qt::Key_Down);
        QCOMPARE(selectedEntry(), QStringLiteral("Quit Quillon!"));
        QTest::keyClick(field(), Qt::Key_Up);
        QTest::keyClick(field(), Qt::Key_Up);
        QCOMPARE(selectedEntry(), recents);

        // Typing searches; emptying the field comes back to the menu.
        QTest::keyClicks(field(), QStringLiteral("nu"));
        QVERIFY(!m_controller->model()->isBrowsing());
        QCOMPARE(selection(), appURL(QStringLiteral("Numbers")));
        QTest::keyClick(field(), Qt::Key_Backspace);
        QTest::keyClick(field(), Qt::Key_Backspace);
        QVERIFY(m_controller->model()->isBrowsing());
        QCOMPARE(selectedEntry(), recents);

        // A command closes the panel and runs.
        QTest::keyClick(field(), Qt::Key_Down);
        QTest::keyClick(field(), Qt::Key_Down);
        QTest::keyClick(field(), Qt::Key_Return);
        QVERIFY(!m_controller->isShown());
        QCOMPARE(quits, 1);
        QVERIFY(m_launcher.calls.isEmpty());

        // Everything hidden: the commands alone, without a line before them.
        const QList<LayoutEntry> layout = m_store->layout();
        for (const auto &entry : layout)
            m_store->setStyle(SourceStyle::Hidden, entry.source);
        m_store->setStyle(SourceStyle::Inline, MenuSource::separator(m_store->separators().first()));
        m_controller->showMenu({CommandEntry{QStringLiteral("Quit Quillon"), {}}});
        QCOMPARE(menuShown(), (QStringList{QStringLiteral("Quillon"), QStringLiteral("Quit Quillon!")}));
    }

    void browsingWithTheMouse()
    {
        layOutMenu();
        m_controller->showMenu({});
        // The path, a line and the disabled folder do nothing.
        clickRow(0);
        clickRow(2);
        clickRow(7);
        QCOMPARE(browser().depth(), 0);
        clickRow(1);
        QCOMPARE(browser().depth(), 1);
        // The second click of a double click lands on an application; it
        // opens nothing.
        clickRow(2);
        QVERIFY(m_launcher.calls.isEmpty());
        QTest::qWait(QApplication::doubleClickInterval() + 50);
        // An item of the menu opens as a search result does.
        const QUrl url = std::get<OpenableEntry>(browser().entries().at(1)).url;
        clickRow(2);
        QCOMPARE(m_launcher.calls,
                 QStringList{QStringLiteral("launch %1 shown=0 recent=%2").arg(url.toLocalFile(), url.fileName())});
    }

    void aNoticeAboveTheField()
    {
        QStringList pressed;
        m_controller->showNotice(PanelNotice{
            QStringLiteral("No system tray is available."),
            QStringLiteral("bindsym $mod+space exec quillon --toggle-search"),
            {PanelAction{QStringLiteral("Add Keyboard Shortcut"),
                         [&pressed] { pressed.append(QStringLiteral("add")); }},
             PanelAction{QStringLiteral("Not Now"), [&pressed] { pressed.append(QStringLiteral("later")); }}}});
        SearchPanelNotice *notice = m_controller->view()->notice();
        QVERIFY(notice);
        QCOMPARE(notice->message()->text(), QStringLiteral("No system tray is available."));
        QVERIFY(notice->copyLine()->isReadOnly());
        QCOMPARE(notice->buttons().size(), 2);
        QTest::mouseClick(notice->copyButton(), Qt::LeftButton);
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QStringLiteral("bindsym $mod+space exec quillon --toggle-search"));
        QTest::mouseClick(notice->buttons().at(1), Qt::LeftButton);
        QTest::mouseClick(notice->buttons().at(0), Qt::LeftButton);
        QCOMPARE(pressed, (QStringList{QStringLiteral("later"), QStringLiteral("add")}));
        // A key on a button is the button's; the panel stays.
        notice->buttons().at(1)->setFocus();
        QTest::keyClick(notice->buttons().at(1), Qt::Key_Space);
        QCOMPARE(pressed.size(), 3);
        QVERIFY(m_controller->isShown());

        // The field still searches under it, and the whole stays on the screen.
        SearchPanel *panel = m_controller->panel();
        const int top = panel->bodyGeometry().top();
        QVERIFY(panel->bodyGeometry().height() > 72 + notice->height() - 1);
        QTest::keyClicks(field(), QStringLiteral("atlas"));
        QCOMPARE(m_controller->model()->results().size(), 12);
        QCOMPARE(panel->bodyGeometry().top(), top);
        QVERIFY(panel->geometry().bottom() <= QGuiApplication::primaryScreen()->availableGeometry().bottom());

        // A button may put the next notice in its own place: a question, then its answer.
        m_controller->showNotice(
            PanelNotice{QStringLiteral("First"),
                        std::nullopt,
                        {PanelAction{QStringLiteral("Next"), [this] {
                                         m_controller->showNotice(PanelNotice{QStringLiteral("Second"), {}, {}});
                                     }}}});
        QTest::mouseClick(m_controller->view()->notice()->buttons().at(0), Qt::LeftButton);
        QCOMPARE(m_controller->view()->notice()->message()->text(), QStringLiteral("Second"));
        QVERIFY(m_controller->isShown());
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
