#include "settings/favoriteappsmodel.h"

#include "config/menustore.h"
#include "platform/itemicons.h"

FavoriteAppsModel::FavoriteAppsModel(MenuStore &store, std::function<QList<AppEntry>()> scanApps, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
    , m_scanApps(std::move(scanApps))
{
    connect(&store, &MenuStore::favoriteAppsChanged, this, [this] {
        if (!m_apps.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_apps.size()) - 1), {Qt::CheckStateRole});
    });
}

void FavoriteAppsModel::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    QList<App> apps = AppLibrary::apps(m_scanApps());
    // One row per application, alphabetical, whatever folder it sits in.
    std::stable_sort(apps.begin(), apps.end(),
                     [](const App &a, const App &b) { return a.name.localeAwareCompare(b.name) < 0; });
    beginResetModel();
    m_apps = std::move(apps);
    endResetModel();
}

int FavoriteAppsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_apps.size());
}

QVariant FavoriteAppsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const App &app = m_apps.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return app.name;
    case Qt::DecorationRole:
        return drawnIcon(app.icon.isEmpty() ? ItemIcon(FileIcon{app.url.toLocalFile()})
                                            : ItemIcon(NamedIcon{app.icon}));
    case Qt::CheckStateRole:
        return m_store.isFavorite(app.url) ? Qt::Checked : Qt::Unchecked;
    case UrlRole:
        return app.url;
    default:
        return {};
    }
}

bool FavoriteAppsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole
        || !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return false;
    m_store.setFavorite(value.value<Qt::CheckState>() == Qt::Checked, m_apps.at(index.row()).url);
    return true;
}

Qt::ItemFlags FavoriteAppsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
}
