#include "settings/searchfiltermodel.h"

#include "sources/textmatch.h"

SearchFilterModel::SearchFilterModel(int foldedRole, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_foldedRole(foldedRole)
{
    setRecursiveFilteringEnabled(true);
}

void SearchFilterModel::setQuery(const QString &query)
{
    const QString folded = foldForSearch(query.trimmed());
    if (folded == m_folded)
        return;
    m_folded = folded;
    invalidateRowsFilter();
}

bool SearchFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    if (m_folded.isEmpty())
        return true;
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    const QString folded =
        m_foldedRole >= 0 ? index.data(m_foldedRole).toString() : foldForSearch(index.data(Qt::DisplayRole).toString());
    return folded.contains(m_folded);
}

bool SearchFilterModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || m_folded.isEmpty() || !hasChildren(index))
        return QSortFilterProxyModel::setData(index, value, role);
    bool changed = false;
    for (int row = 0; row < rowCount(index); ++row)
        changed = setData(this->index(row, 0, index), value, role) || changed;
    return changed;
}
