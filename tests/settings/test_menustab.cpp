#include "config/menustore.h"
#include "config/preferences.h"
#include "config/urls.h"
#include "fixtures.h"
#include "hotkeys/fakebackend.h"
#include "hotkeys/hotkeycenter.h"
#include "platform/itemicons.h"
#include "settings/checkableurlsmodel.h"
#include "settings/custommenusmodel.h"
#include "settings/menuitemsmodel.h"
#include "settings/menuspane.h"
#include "settings/panetreemodel.h"
#include "settings/searchfiltermodel.h"
#include "settings/symboliconsmodel.h"
#include "settings/symbolpicker.h"
#include "settings/updatesettings.h"
#include "sources/shortcutlibrary.h"

#include <QAbstractButton>
#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

namespace {

class NoUpdates final : public UpdateSettings
{
public:
    bool isConfigured() const override { return false; }
    bool automaticallyChecksForUpdates() const override { return false; }
    void setAutomaticallyChecksForUpdates(bool) override { }
    void checkForUpdates() override { }
};

const QUrl wifi(QStringLiteral("settings://gnome/wifi"));
const QUrl savedNetworks(QStringLiteral("settings://gnome/wifi/saved"));
const QUrl network(QStringLiteral("settings://gnome/network"));
const QUrl display(QStringLiteral("settings://gnome/display"));

// The control a screen reader announces by this name.
template<typename T = QAbstractButton>
T *named(const QWidget &parent, const QString &name)
{
    for (T *widget : parent.findChildren<T *>()) {
        if (widget->accessibleName() == name)
            return widget;
    }
    return nullptr;
}

QStringList titles(const QAbstractItemModel &model, const QModelIndex &parent = {})
{
    QStringList list;
    for (int row = 0; row < model.rowCount(parent); ++row)
        list.append(model.index(row, 0, parent).data().toString());
    return list;
}

} // namespace

// The Menus tab: the models behind its views keep the store and the saved
// preferences in step with what a person does, and follow changes made
// elsewhere.
class TestMenusTab : public QObject
{
    Q_OBJECT

private:
    StoreFixture m_saved;
    TestCatalog m_catalog;
    const ContentSources *m_sources = nullptr;

    QString path(const QString &name) const { return m_saved.path(name); }
    QUrl fileUrl(const QString &name) const { return QUrl::fromLocalFile(path(name)); }
    CustomMenu saved(const QUuid &id) const { return *MenuStore(*m_saved.preferences).menu(id); }

    void write(const QString &name, const QByteArray &content = {}) const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    NoUpdates m_updates;
    FakeBackend m_backend;
    std::unique_ptr<HotKeyCenters> m_hotKeys;
    std::unique_ptr<MenusPane> m_pane;

    MenusPane &shownPane()
    {
        m_hotKeys = std::make_unique<HotKeyCenters>(*m_saved.preferences, m_backend);
        m_pane = std::make_unique<MenusPane>(
            SettingsServices{*m_saved.preferences, *m_saved.store, m_updates, *m_sources, *m_hotKeys});
        m_pane->show();
        return *m_pane;
    }

private Q_SLOTS:
    void init()
    {
        m_saved.reset();
        const Item saved{QStringLiteral("Saved Networks"), {}, {}, Kind::Sheet, savedNetworks, {}};
        m_catalog.set({{QStringLiteral("network"), QStringLiteral("display")}},
                      {testPane(QStringLiteral("network"), QStringLiteral("Network"), {},
                                QList<QList<QString>>{{QStringLiteral("wifi")}}),
                       testPane(QStringLiteral("wifi"), QStringLiteral("Wi-Fi"), {saved}),
                       testPane(QStringLiteral("display"), QStringLiteral("Displays"))});
        m_sources = &m_catalog.sources(*m_saved.store, *m_saved.shortcuts);
    }

    void cleanup()
    {
        m_pane.reset();
        m_hotKeys.reset();
    }

    void menusListEditsReachTheSavedPreferences()
    {
        CustomMenusModel model(*m_saved.store);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);

        const QModelIndex work = model.addMenu(QStringLiteral("Untitled"));
        QVERIFY(model.setData(work, QStringLiteral("  Work ")));
        QCOMPARE(saved(model.idAt(work)).name, QStringLiteral("Work"));
        // A name of nothing but spaces is refused.
        QVERIFY(!model.setData(work, QStringLiteral("   ")));
        QCOMPARE(m_saved.store->menus().first().name, QStringLiteral("Work"));

        m_saved.store->setColor(model.idAt(work), FolderColor::Red);
        const QModelIndex copy = model.duplicateMenu(work, QStringLiteral("Work copy"));
        QCOMPARE(copy.row(), 1);
        const CustomMenu copied = saved(model.idAt(copy));
        QCOMPARE(copied.name, QStringLiteral("Work copy"));
        QCOMPARE(copied.color, std::optional(FolderColor::Red));

        // Rows follow the store one by one, so a view keeps its selection.
        const QPersistentModelIndex kept(copy);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        model.removeMenu(model.index(0));
        QCOMPARE(titles(model), QStringList{QStringLiteral("Work copy")});
        QCOMPARE(kept.row(), 0);
        m_saved.store->addMenu(QStringLiteral("Elsewhere"));
        QCOMPARE(titles(model), (QStringList{QStringLiteral("Work copy"), QStringLiteral("Elsewhere")}));
        QCOMPARE(resets.count(), 0);
    }

    void itemsAreGroupedAndMissingFilesFlagged()
    {
        write(QStringLiteral("editor.desktop"), "[Desktop Entry]\nType=Application\nName=Text Editor\nExec=true\n");
        write(QStringLiteral("notes.txt"));
        const QUuid id = m_saved.store->addMenu(QStringLiteral("Mixed")).id;
        MenuItemsModel model(*m_sources);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setMenu(id);
        QVERIFY(model.isEmpty());

        for (const QUrl &url : {display, fileUrl(QStringLiteral("notes.txt")), fileUrl(QStringLiteral("gone.txt")),
                                fileUrl(QStringLiteral("editor.desktop")), savedNetworks})
            m_saved.store->setIncluded(true, url, id);
        m_saved.store->updateMenu(id, [](CustomMenu &menu) { menu.groupOrder = QList{MenuItemKind::Settings}; });
        QCOMPARE(titles(model), (QStringList{"System Settings", "Applications", "Files & Folders"}));
        QCOMPARE(titles(model, model.index(0, 0)), (QStringList{"Displays", "Wi-Fi › Saved Networks…"}));
        QCOMPARE(titles(model, model.index(1, 0)), QStringList{"Text Editor"});
        QCOMPARE(titles(model, model.index(2, 0)), (QStringList{"notes.txt", "gone.txt"}));

        const QModelIndex notes = model.index(0, 0, model.index(2, 0));
        const QModelIndex gone = model.index(1, 0, model.index(2, 0));
        QVERIFY(!notes.data(MenuItemsModel::UnavailableRole).toBool());
        QVERIFY(gone.data(MenuItemsModel::UnavailableRole).toBool());
        QCOMPARE(gone.data(Qt::ToolTipRole).toString(), QStringLiteral("This item is unavailable."));
        QCOMPARE(gone.data(Qt::AccessibleDescriptionRole).toString(), QStringLiteral("This item is unavailable."));

        // Removing a group row takes out all its items.
        model.remove({model.index(2, 0), model.index(0, 0, model.index(0, 0))});
        QCOMPARE(saved(id).urls, (QList<QUrl>{fileUrl(QStringLiteral("editor.desktop")), savedNetworks}));
        QCOMPARE(titles(model), (QStringList{"System Settings", "Applications"}));
    }

    // A shortcut is only known to be gone once the shortcuts tool has
    // answered; the items follow its answer.
    void shortcutsAreFlaggedOnceTheLibraryAnswers()
    {
        const QString backup = QStringLiteral("AAAAAAAA-AAAA-4AAA-8AAA-AAAAAAAAAAAA");
        const QString gone = QStringLiteral("BBBBBBBB-BBBB-4BBB-8BBB-BBBBBBBBBBBB");
        const QString tool = path(QStringLiteral("quillon-shortcuts"));
        write(QStringLiteral("quillon-shortcuts"),
              QStringLiteral("#!/bin/sh\ncase \"$*\" in *none) printf 'Backup (%1)\\n';; esac\n").arg(backup).toUtf8());
        QFile::setPermissions(tool, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        ShortcutLibrary library(tool);
        const ContentSources &sources = m_catalog.sources(*m_saved.store, library);
        const QUuid id = m_saved.store->addMenu(QStringLiteral("Scripts")).id;
        m_saved.store->setIncluded(true, shortcutURL(backup), id);
        m_saved.store->setIncluded(true, shortcutURL(gone), id);
        MenuItemsModel model(sources);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setMenu(id);
        const QModelIndex shortcuts = model.index(0, 0);
        QVERIFY(!model.index(1, 0, shortcuts).data(MenuItemsModel::UnavailableRole).toBool());

        library.refresh();
        QTRY_VERIFY(library.hasLoaded());
        QCOMPARE(titles(model, shortcuts), (QStringList{QStringLiteral("Backup"), gone}));
        QVERIFY(!model.index(0, 0, shortcuts).data(MenuItemsModel::UnavailableRole).toBool());
        QVERIFY(model.index(1, 0, shortcuts).data(MenuItemsModel::UnavailableRole).toBool());
    }

    // Drags carry rows within one menu: groups among groups, settings places
    // among themselves; anything else is refused.
    void dragsMoveGroupsAndSettingsPlaces()
    {
        write(QStringLiteral("notes.txt"));
        const QUuid id = m_saved.store->addMenu(QStringLiteral("Mixed")).id;
        for (const QUrl &url : {wifi, fileUrl(QStringLiteral("notes.txt")), display, network})
            m_saved.store->setIncluded(true, url, id);
        MenuItemsModel model(*m_sources);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setMenu(id);
        QCOMPARE(titles(model), (QStringList{"Files & Folders", "System Settings"}));
        const QModelIndex settings = model.index(1, 0);
        const QPersistentModelIndex displayRow = model.index(1, 0, settings);
        QCOMPARE(displayRow.data().toString(), QStringLiteral("Displays"));

        std::unique_ptr<QMimeData> groups(model.mimeData({settings}));
        // Among a group's items, a group lands after that group.
        QVERIFY(model.canDropMimeData(groups.get(), Qt::MoveAction, 0, 0, model.index(0, 0)));
        QVERIFY(!model.canDropMimeData(groups.get(), Qt::MoveAction, -1, 0, model.index(0, 0, settings)));
        QVERIFY(model.dropMimeData(groups.get(), Qt::MoveAction, 0, 0, {}));
        QCOMPARE(titles(model), (QStringList{"System Settings", "Files & Folders"}));
        QCOMPARE(saved(id).groupOrder, (std::optional(QList{MenuItemKind::Settings, MenuItemKind::Files,
                                                            MenuItemKind::Apps, MenuItemKind::Shortcuts})));
        // The place moved with its group rather than being rebuilt.
        QCOMPARE(displayRow.parent().row(), 0);

        std::unique_ptr<QMimeData> places(model.mimeData({model.index(2, 0, model.index(0, 0))}));
        QVERIFY(!model.canDropMimeData(places.get(), Qt::MoveAction, 0, 0, {}));
        QVERIFY(model.dropMimeData(places.get(), Qt::MoveAction, -1, 0, model.index(0, 0, model.index(0, 0))));
        QCOMPARE(titles(model, model.index(0, 0)), (QStringList{"Network", "Wi-Fi", "Displays"}));
        QCOMPARE(displayRow.row(), 2);
        QCOMPARE(saved(id).urls, (QList<QUrl>{fileUrl(QStringLiteral("notes.txt")), network, wifi, display}));

        // Files do not move, groups and places do not move together, and
        // another menu's rows are not taken.
        QCOMPARE(model.mimeData({model.index(0, 0, model.index(1, 0))}), nullptr);
        QCOMPARE(model.mimeData({model.index(1, 0), model.index(0, 0, model.index(0, 0))}), nullptr);
        MenuItemsModel other(*m_sources);
        other.setMenu(m_saved.store->duplicateMenu(id, QStringLiteral("Other"))->id);
        QVERIFY(!other.canDropMimeData(groups.get(), Qt::MoveAction, 0, 0, {}));
    }

    void paneTreeChecksIncludePlaces()
    {
        const QUuid id = m_saved.store->addMenu(QStringLiteral("Settings")).id;
        PaneTreeModel model(*m_sources);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setMenu(id);
        QCOMPARE(titles(model), (QStringList{"Network", "Displays"}));
        const QModelIndex networkRow = model.index(0, 0);
        const QModelIndex wifiRow = model.indexOf(wifi);
        const QModelIndex savedRow = model.indexOf(savedNetworks);
        QCOMPARE(wifiRow.parent(), networkRow);
        QCOMPARE(savedRow.data().toString(), QStringLiteral("Saved Networks…"));

        QVERIFY(model.setData(savedRow, Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(saved(id).urls, QList<QUrl>{savedNetworks});
        QCOMPARE(savedRow.data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        // Panes holding a picked place show it.
        QCOMPARE(wifiRow.data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
        QCOMPARE(networkRow.data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));

        QVERIFY(model.setData(wifiRow, Qt::Checked, Qt::CheckStateRole));
        QVERIFY(model.setData(savedRow, Qt::Checked, Qt::CheckStateRole));
        // Checking what is checked leaves the order alone.
        QCOMPARE(saved(id).urls, (QList<QUrl>{savedNetworks, wifi}));
        QCOMPARE(wifiRow.data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QVERIFY(model.setData(savedRow, Qt::Unchecked, Qt::CheckStateRole));
        QCOMPARE(saved(id).urls, QList<QUrl>{wifi});

        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        m_saved.store->setIncluded(false, wifi, id);
        QVERIFY(!changed.isEmpty());
        QCOMPARE(wifiRow.data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
        QCOMPARE(networkRow.data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
    }

    // A catalog that lists a pane inside itself still makes a finite tree.
    void paneTreeSurvivesACyclicCatalog()
    {
        m_catalog.set({{QStringLiteral("a")}},
                      {testPane(QStringLiteral("a"), QStringLiteral("A"), {}, QList<QList<QString>>{{"b"}}),
                       testPane(QStringLiteral("b"), QStringLiteral("B"), {}, QList<QList<QString>>{{"a", "c"}}),
                       testPane(QStringLiteral("c"), QStringLiteral("C"))});
        PaneTreeModel model(m_catalog.sources(*m_saved.store, *m_saved.shortcuts));
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QModelIndex b = model.index(0, 0, model.index(0, 0));
        QCOMPARE(titles(model, b), QStringList{"C"});
    }

    void headingsCheckAllTheyHoldAndSearchFindsInside()
    {
        const QUuid id = m_saved.store->addMenu(QStringLiteral("Apps")).id;
        const QUrl editor = fileUrl(QStringLiteral("editor.desktop"));
        const QUrl paint = fileUrl(QStringLiteral("paint.desktop"));
        const QUrl terminal = fileUrl(QStringLiteral("terminal.desktop"));
        CheckableUrlsModel model(*m_saved.store);
        model.setEntries(
            {{QStringLiteral("Graphics"), {}, {}, {{QStringLiteral("Paint"), paint, {}, {}}}},
             {QStringLiteral("Utilities"),
              {},
              {},
              {{QStringLiteral("Éditeur"), editor, {}, {}}, {QStringLiteral("Terminal"), terminal, {}, {}}}}});
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const QModelIndex utilities = model.index(1, 0);
        // Boxes show once there is a menu to put things in, even an empty one.
        QVERIFY(!utilities.data(Qt::CheckStateRole).isValid());
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        model.setMenu(id);
        QVERIFY(!changed.isEmpty());
        QCOMPARE(utilities.data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));

        QVERIFY(model.setData(model.index(0, 0, utilities), Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(utilities.data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
        QVERIFY(model.setData(utilities, Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(saved(id).urls, (QList<QUrl>{editor, terminal}));
        QCOMPARE(utilities.data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QVERIFY(model.setData(utilities, Qt::Unchecked, Qt::CheckStateRole));
        QVERIFY(saved(id).urls.isEmpty());

        SearchFilterModel filter(CheckableUrlsModel::FoldedTitleRole);
        filter.setSourceModel(&model);
        QAbstractItemModelTester filterTester(&filter, QAbstractItemModelTester::FailureReportingMode::QtTest);
        filter.setQuery(QStringLiteral("edit"));
        QCOMPARE(titles(filter), QStringList{"Utilities"});
        QCOMPARE(titles(filter, filter.index(0, 0)), QStringList{"Éditeur"});
        filter.setQuery({});
        QCOMPARE(filter.rowCount(), 2);
    }

    // The picker offers the symbolic icons of the theme and of the themes it
    // inherits, each once; typing narrows the grid and Enter takes the first.
    void symbolPickerSearchesTheThemeChain()
    {
        const QString index = QStringLiteral("[Icon Theme]\nName=%1\nInherits=%2\nDirectories=symbolic\n\n"
                                             "[symbolic]\nSize=16\nType=Scalable\n");
        write(QStringLiteral("icons/Mine/index.theme"),
              index.arg(QStringLiteral("Mine"), QStringLiteral("Base")).toUtf8());
        write(QStringLiteral("icons/Base/index.theme"), index.arg(QStringLiteral("Base"), QString()).toUtf8());
        for (const QString &icon :
             {QStringLiteral("Mine/symbolic/starred-symbolic.svg"),
              QStringLiteral("Base/symbolic/starred-symbolic.svg"),
              QStringLiteral("Base/symbolic/user-home-symbolic.svg"), QStringLiteral("Base/symbolic/user-home.svg"),
              QStringLiteral("Other/symbolic/weather-storm-symbolic.svg")})
            write(QStringLiteral("icons/") + icon, "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'/>");
        const QStringList searchPaths = QIcon::themeSearchPaths();
        const QString themeName = QIcon::themeName();
        QIcon::setThemeSearchPaths({path(QStringLiteral("icons"))});
        QIcon::setThemeName(QStringLiteral("Mine"));
        const QStringList symbols = SymbolicIconsModel::themeSymbols();
        SymbolPicker picker(*m_catalog.strings, std::nullopt);
        QTest::keyClicks(picker.findChild<QLineEdit *>(), QStringLiteral("home"));
        QTest::keyClick(picker.findChild<QLineEdit *>(), Qt::Key_Return);
        QIcon::setThemeSearchPaths(searchPaths);
        QIcon::setThemeName(themeName);
        QCOMPARE(symbols, (QStringList{"starred-symbolic", "user-home-symbolic"}));
        QCOMPARE(picker.result(), int(QDialog::Accepted));
        QCOMPARE(picker.symbol(), std::optional<QString>(QStringLiteral("user-home-symbolic")));

        // Each is named for people, and only a listed one is found.
        SymbolicIconsModel model(symbols);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.indexOf(QStringLiteral("user-home-symbolic")).data(Qt::ToolTipRole).toString(),
                 QStringLiteral("user home"));
        QVERIFY(!model.indexOf(std::nullopt).isValid());
        QVERIFY(!model.indexOf(QStringLiteral("missing-symbolic")).isValid());
    }

    // What a person does in the tab lands in the store: a new menu is
    // selected with its name ready to type over, and a name left empty
    // goes back to the stored one.
    void paneAddsRenamesAndRefusesEmptyNames()
    {
        MenusPane &pane = shownPane();
        QVERIFY(QTest::qWaitForWindowExposed(&pane));
        QLabel *noSelection = named<QLabel>(pane, QStringLiteral("No Selection"));
        QVERIFY(noSelection && noSelection->isVisible());

        named(pane, QStringLiteral("Add"))->click();
        QCOMPARE(m_saved.store->menus().size(), 1);
        QCOMPARE(pane.currentMenu(), m_saved.store->menus().first().id);
        QVERIFY(!noSelection->isVisible());
        auto *name = pane.findChild<QLineEdit *>();
        QCOMPARE(name->text(), QStringLiteral("Untitled"));
        QCOMPARE(name->selectedText(), QStringLiteral("Untitled"));

        // Screen readers and tests find every control by its label.
        for (QWidget *widget : pane.findChildren<QWidget *>()) {
            if (widget->focusPolicy() != Qt::NoFocus && widget->isVisibleTo(&pane))
                QVERIFY2(!widget->accessibleName().isEmpty(), widget->metaObject()->className());
        }

        QTest::keyClicks(name, QStringLiteral("Home"));
        QTest::keyClick(name, Qt::Key_Return);
        QCOMPARE(saved(pane.currentMenu()).name, QStringLiteral("Home"));
        name->selectAll();
        QTest::keyClick(name, Qt::Key_Backspace);
        QTest::keyClick(name, Qt::Key_Return);
        QCOMPARE(name->text(), QStringLiteral("Home"));
        QCOMPARE(m_saved.store->menus().first().name, QStringLiteral("Home"));

        named(pane, QStringLiteral("Duplicate"))->click();
        QCOMPARE(name->text(), QStringLiteral("Home copy"));
        QCOMPARE(pane.currentMenu(), m_saved.store->menus().last().id);
        // Renamed elsewhere, the field follows.
        m_saved.store->renameMenu(pane.currentMenu(), QStringLiteral("Away"));
        QCOMPARE(name->text(), QStringLiteral("Away"));
        // Deleted elsewhere, its neighbour is shown.
        m_saved.store->removeMenu(pane.currentMenu());
        QCOMPARE(pane.currentMenu(), m_saved.store->menus().first().id);
        QCOMPARE(name->text(), QStringLiteral("Home"));

        // Deleting asks first, in the interface's words.
        QString asked;
        QTimer::singleShot(0, this, [&asked] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box);
            asked = box->text() + u'|' + box->informativeText();
            for (QAbstractButton *button : box->buttons()) {
                if (button->text() == QStringLiteral("Delete"))
                    button->click();
            }
        });
        named(pane, QStringLiteral("Delete"))->click();
        QCOMPARE(asked, QStringLiteral("Are you sure you want to delete “Home”?|You can’t undo this action."));
        QVERIFY(m_saved.store->menus().isEmpty());
        QVERIFY(MenuStore(*m_saved.preferences).menus().isEmpty());
        QVERIFY(noSelection->isVisible());
    }

    // The symbol and colour shown are drawn exactly as the menu draws them,
    // and follow the store.
    void paneShowsTheMenusOwnSymbolAndColour()
    {
        const QUuid id = m_saved.store->addMenu(QStringLiteral("Tinted")).id;
        MenusPane &pane = shownPane();
        QVERIFY(QTest::qWaitForWindowExposed(&pane));
        auto *preview = named<QToolButton>(pane, QStringLiteral("Icon"));
        auto *color = named<QToolButton>(pane, QStringLiteral("Color"));
        QVERIFY(preview && color);
        const auto checkedColor = [color] {
            for (QAction *action : color->menu()->actions()) {
                if (action->isChecked())
                    return action->text();
            }
            return QString();
        };
        QCOMPARE(checkedColor(), QStringLiteral("None"));

        color->menu()->actions().at(1)->trigger();
        QCOMPARE(saved(id).color, std::optional(FolderColor::Blue));
        m_saved.store->setColor(id, FolderColor::Graphite);
        m_saved.store->setSymbol(id, QStringLiteral("user-home-symbolic"));
        QCOMPARE(checkedColor(), QStringLiteral("Graphite"));
        const QIcon drawn =
            drawnIcon(ItemIcon{MenuSymbolIcon{QStringLiteral("user-home-symbolic"), FolderColor::Graphite}});
        QCOMPARE(preview->icon().cacheKey(), drawn.cacheKey());
        auto *list = pane.findChild<QListView *>();
        QCOMPARE(list->model()->index(0, 0).data(Qt::DecorationRole).value<QIcon>().cacheKey(), drawn.cacheKey());
    }

    // Drags have keyboard equivalents: Alt+Up and Alt+Down move the chosen
    // place or group, Delete takes items out.
    void paneMovesAndRemovesItemsFromTheKeyboard()
    {
        const QUuid id = m_saved.store->addMenu(QStringLiteral("Places")).id;
        for (const QUrl &url : {wifi, display, network})
            m_saved.store->setIncluded(true, url, id);
        MenusPane &pane = shownPane();
        QVERIFY(QTest::qWaitForWindowExposed(&pane));
        QCOMPARE(pane.currentMenu(), id);
        auto *items = pane.findChild<QTreeView *>();
        const QModelIndex settings = items->model()->index(0, 0);
        items->setFocus();
        items->setCurrentIndex(items->model()->index(2, 0, settings));
        QTest::keyClick(items, Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(saved(id).urls, (QList<QUrl>{wifi, network, display}));
        QCOMPARE(items->currentIndex().data().toString(), QStringLiteral("Network"));
        QTest::keyClick(items, Qt::Key_Up, Qt::AltModifier);
        QTest::keyClick(items, Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(saved(id).urls, (QList<QUrl>{network, wifi, display}));

        QTest::keyClick(items, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(items, Qt::Key_Delete);
        QCOMPARE(saved(id).urls, QList<QUrl>{display});
    }
};

QTEST_MAIN(TestMenusTab)
#include "test_menustab.moc"
