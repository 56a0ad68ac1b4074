#pragma once

#include "sources/applibrary.h"

#include <QAbstractListModel>

class MenuStore;

// The installed applications, each with a check box that marks it a
// favourite. Scanned on first use, not when the window opens. Follows the
// store's favourites.
class FavoriteAppsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { UrlRole = Qt::UserRole + 1 };

    FavoriteAppsModel(MenuStore &store, std::function<QList<AppEntry>()> scanApps, QObject *parent = nullptr);

    // Scans the applications, once.
    void load();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    MenuStore &m_store;
    std::function<QList<AppEntry>()> m_scanApps;
    QList<App> m_apps;
    bool m_loaded = false;
};
