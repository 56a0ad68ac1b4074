#include "settings/custommenusmodel.h"

#include "config/menustore.h"
#include "platform/itemicons.h"

CustomMenusModel::CustomMenusModel(MenuStore &store, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
{
    for (const auto &menu : store.menus())
        m_ids.append(menu.id);
    connect(&store, &MenuStore::menusChanged, this, &CustomMenusModel::follow);
}

int CustomMenusModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_ids.size());
}

QVariant CustomMenusModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const auto menu = m_store.menu(m_ids.at(index.row()));
    if (!menu)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::AccessibleTextRole:
        return menu->name;
    case Qt::DecorationRole:
        return drawnIcon(ItemIcon{MenuSymbolIcon{menu->symbol, menu->color}});
    case IdRole:
        return menu->id;
    default:
        return {};
    }
}

Qt::ItemFlags CustomMenusModel::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | (index.isValid() ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

bool CustomMenusModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return false;
    const QString name = value.toString().trimmed();
    if (name.isEmpty())
        return false;
    m_store.renameMenu(m_ids.at(index.row()), name);
    return true;
}

QModelIndex CustomMenusModel::indexOf(const QUuid &id) const
{
    const qsizetype row = m_ids.indexOf(id);
    return row < 0 ? QModelIndex() : index(int(row));
}

QUuid CustomMenusModel::idAt(const QModelIndex &index) const
{
    return index.isValid() && index.model() == this && index.row() < m_ids.size() ? m_ids.at(index.row()) : QUuid();
}

QModelIndex CustomMenusModel::addMenu(const QString &name)
{
    return indexOf(m_store.addMenu(name).id);
}

QModelIndex CustomMenusModel::duplicateMenu(const QModelIndex &index, const QString &name)
{
    const auto copy = m_store.duplicateMenu(idAt(index), name);
    return copy ? indexOf(copy->id) : QModelIndex();
}

void CustomMenusModel::removeMenu(const QModelIndex &index)
{
    if (const QUuid id = idAt(index); !id.isNull())
        m_store.removeMenu(id);
}

// The store only appends and removes menus, so the rows are kept in step by
// removing and inserting them one by one: views keep their selection.
void CustomMenusModel::follow()
{
    QList<QUuid> ids;
    for (const auto &menu : m_store.menus()) {
        if (!ids.contains(menu.id))
            ids.append(menu.id);
    }
    for (qsizetype row = m_ids.size() - 1; row >= 0; --row) {
        if (!ids.contains(m_ids.at(row))) {
            beginRemoveRows({}, int(row), int(row));
            m_ids.removeAt(row);
            endRemoveRows();
        }
    }
    for (qsizetype row = 0; row < ids.size(); ++row) {
        if (row < m_ids.size() && m_ids.at(row) == ids.at(row))
            continue;
        if (m_ids.contains(ids.at(row))) {
            // Reordered behind our back: start afresh.
            beginResetModel();
            m_ids = ids;
            endResetModel();
            return;
        }
        beginInsertRows({}, int(row), int(row));
        m_ids.insert(row, ids.at(row));
        endInsertRows();
    }
    if (!m_ids.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_ids.size()) - 1), {Qt::DisplayRole, Qt::EditRole, Qt::DecorationRole});
}
