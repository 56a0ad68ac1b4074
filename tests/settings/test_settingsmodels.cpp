#include "config/menustore.h"
#include "config/preferences.h"
#include "fixtures.h"
#include "settings/checkableurlsmodel.h"
#include "settings/favoriteappsmodel.h"
#include "settings/layoutmodel.h"
#include "settings/searchfiltermodel.h"
#include "sources/shortcutlibrary.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

// The models behind the Content and Applications tabs: what they show, what
// an edit does to the store, and that a change made elsewhere reaches them.
class TestSettingsModels : public QObject
{
    Q_OBJECT

private:
    StoreFixture m_saved;
    TestCatalog m_settings;

    QStringList titles(const QAbstractItemModel &model, int column = 0) const
    {
        QStringList result;
        for (int row = 0; row < model.rowCount(); ++row)
            result.append(model.index(row, column).data().toString());
        return result;
    }

private Q_SLOTS:
    void init()
    {
        m_saved.reset();
        m_settings.set({{QStringLiteral("wifi")}}, {testPane(QStringLiteral("wifi"), QStringLiteral("Wi-Fi"))});
    }

    void layoutRowsEditAndFollowTheStore()
    {
        LayoutModel model(*m_saved.store, m_settings.sources(*m_saved.store, *m_saved.shortcuts));
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(titles(model), (QStringList{"Applications", "System Settings", "Shortcuts", "Recents"}));
        QCOMPARE(titles(model, LayoutModel::StyleColumn), (QStringList{"Submenu", "Submenu", "Submenu", "Submenu"}));

        // A style chosen here is saved at once.
        QVERIFY(model.setData(model.index(3, LayoutModel::StyleColumn), int(SourceStyle::Hidden), Qt::EditRole));
        QCOMPARE(MenuStore(*m_saved.preferences).layout().at(3).style, SourceStyle::Hidden);
        QCOMPARE(model.index(3, LayoutModel::StyleColumn).data().toString(), QStringLiteral("Don’t Show"));
        QVERIFY(!model.setData(model.index(3, LayoutModel::StyleColumn), 7, Qt::EditRole));

        // Changes made elsewhere show: a folder that does not exist, a separator.
        m_saved.store->addFolder(QUrl::fromLocalFile(m_saved.path(QStringLiteral("Gone/"))));
        m_saved.store->addSeparator();
        QCOMPARE(model.rowCount(), 6);
        const QModelIndex folder = model.index(int(titles(model).indexOf(QStringLiteral("Gone"))), 0);
        QCOMPARE(folder.data().toString(), QStringLiteral("Gone"));
        QVERIFY(!folder.data(LayoutModel::IsAvailableRole).toBool());
        QCOMPARE(folder.data(Qt::ToolTipRole).toString(), QStringLiteral("Not Available"));
        QVERIFY(folder.data(LayoutModel::IsRemovableRole).toBool());
        QVERIFY(!model.index(2, 0).data(LayoutModel::IsRemovableRole).toBool());
        // Separators have no style to choose.
        const int separator = int(titles(model).indexOf(QStringLiteral("Separator")));
        QVERIFY(separator >= 0);
        QVERIFY(!(model.flags(model.index(separator, LayoutModel::StyleColumn)) & Qt::ItemIsEditable));
    }

    void draggedRowsMoveAsOneBlock()
    {
        LayoutModel model(*m_saved.store, m_settings.sources(*m_saved.store, *m_saved.shortcuts));
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        // Views keep their selection by asking for the rows as they were.
        QList<MenuSource> rowsBeforeReset;
        connect(&model, &QAbstractItemModel::modelAboutToBeReset, this, [&] {
            rowsBeforeReset.clear();
            for (int row = 0; row < model.rowCount(); ++row)
                rowsBeforeReset.append(model.source(row));
        });
        // Shortcuts and Applications, dragged together, dropped in front of Recents.
        std::unique_ptr<QMimeData> data(model.mimeData({model.index(2, 0), model.index(0, 1), model.index(0, 0)}));
        QVERIFY(data->hasFormat(QLatin1String(DraggedSource::mimeType)));
        QVERIFY(model.canDropMimeData(data.get(), Qt::MoveAction, 3, 0, {}));
        model.dropMimeData(data.get(), Qt::MoveAction, 3, 0, {});
        QCOMPARE(titles(model), (QStringList{"System Settings", "Applications", "Shortcuts", "Recents"}));
        QCOMPARE(rowsBeforeReset.first(), MenuSource::applications());
        // Dropped below the last row: to the end.
        data.reset(model.mimeData({model.index(0, 0)}));
        model.dropMimeData(data.get(), Qt::MoveAction, -1, -1, {});
        QCOMPARE(titles(model), (QStringList{"Applications", "Shortcuts", "Recents", "System Settings"}));
        QCOMPARE(MenuStore(*m_saved.preferences).layout().last().source, MenuSource::systemSettings());
        // Anything else is refused.
        QMimeData foreign;
        foreign.setText(QStringLiteral("applications"));
        QVERIFY(!model.canDropMimeData(&foreign, Qt::MoveAction, 0, 0, {}));
        QVERIFY(!model.canDropMimeData(data.get(), Qt::CopyAction, 0, 0, {}));
    }

    void favouritesAreTickedAndFollowed()
    {
        const App zed{QStringLiteral("Zed"), QUrl(QStringLiteral("file:///apps/zed.desktop")), {}};
        const App atlas{QStringLiteral("Atlas"), QUrl(QStringLiteral("file:///apps/atlas.desktop")), {}};
        int scans = 0;
        FavoriteAppsModel model(*m_saved.store, [&] {
            ++scans;
            return QList<AppEntry>{AppFolder{QStringLiteral("Tools"), {}, {}, {zed}}, atlas};
        });
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(model.rowCount(), 0); // nothing is scanned before the tab shows
        model.load();
        model.load();
        QCOMPARE(scans, 1);
        QCOMPARE(titles(model), (QStringList{"Atlas", "Zed"}));

        QVERIFY(model.setData(model.index(1), Qt::Checked, Qt::CheckStateRole));
        QVERIFY(m_saved.store->isFavorite(zed.url));
        QVERIFY(MenuStore(*m_saved.preferences).isFavorite(zed.url));
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        m_saved.store->setFavorite(true, atlas.url);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(model.index(0).data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Checked);
    }

    // Ticking a category while the chooser is filtered takes only what shows.
    void aFilteredHeadingTicksWhatShows()
    {
        const QUrl marker(QStringLiteral("file:///apps/marker.desktop"));
        const QUrl vim(QStringLiteral("file:///apps/vim.desktop"));
        const CustomMenu menu = m_saved.store->addMenu(QStringLiteral("Work"));
        CheckableUrlsModel apps(*m_saved.store);
        apps.setMenu(menu.id);
        apps.setEntries({{QStringLiteral("Accessories"),
                          {},
                          {},
                          {{QStringLiteral("Marker Probe"), marker, {}, {}}, {QStringLiteral("Vim"), vim, {}, {}}}}});
        SearchFilterModel filtered;
        filtered.setSourceModel(&apps);
        QAbstractItemModelTester tester(&filtered, QAbstractItemModelTester::FailureReportingMode::QtTest);
        filtered.setQuery(QStringLiteral("marker"));
        const QModelIndex heading = filtered.index(0, 0);
        QCOMPARE(filtered.rowCount(heading), 1);
        QVERIFY(filtered.setData(heading, Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(m_saved.store->menu(menu.id)->urls, QList<QUrl>{marker});
        // Unfiltered, the heading stands for all it holds again.
        filtered.setQuery({});
        QVERIFY(filtered.setData(filtered.index(0, 0), Qt::Checked, Qt::CheckStateRole));
        QCOMPARE(m_saved.store->menu(menu.id)->urls, (QList<QUrl>{marker, vim}));
    }
};

QTEST_MAIN(TestSettingsModels)
#include "test_settingsmodels.moc"
