#pragma once

#include <QAbstractListModel>
#include <QUuid>

class MenuStore;

// The user's custom menus as a list, each with its name and its symbol drawn
// as the status menu draws it. Edits go to the store; the list follows the
// store whoever changes it.
class CustomMenusModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { IdRole = Qt::UserRole + 1 };

    explicit CustomMenusModel(MenuStore &store, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    // Renames the menu; a name of only spaces is refused.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    QModelIndex indexOf(const QUuid &id) const;
    QUuid idAt(const QModelIndex &index) const;

    // Each returns the new menu's row.
    QModelIndex addMenu(const QString &name);
    QModelIndex duplicateMenu(const QModelIndex &index, const QString &name);
    void removeMenu(const QModelIndex &index);

private:
    void follow();

    MenuStore &m_store;
    QList<QUuid> m_ids;
};
