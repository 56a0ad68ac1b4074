#include "settings/checkableurlsmodel.h"

#include "config/menustore.h"
#include "config/urls.h"
#include "sources/textmatch.h"

CheckableUrlsModel::CheckableUrlsModel(MenuStore &store, QObject *parent)
    : QAbstractItemModel(parent)
    , m_store(store)
{
    connect(&store, &MenuStore::menusChanged, this, [this] { follow(); });
}

void CheckableUrlsModel::add(const QList<Entry> &entries, int parent, QList<int> &rows)
{
    for (const Entry &entry : entries) {
        const int at = int(m_nodes.size());
        rows.append(at);
        m_nodes.append(Node{Entry{entry.title, entry.url, entry.icon, {}}, foldForSearch(entry.title), parent, {}});
        QList<int> children;
        add(entry.children, at, children);
        m_nodes[at].children = children;
    }
}

void CheckableUrlsModel::setEntries(const QList<Entry> &entries)
{
    beginResetModel();
    m_nodes.clear();
    m_roots.clear();
    add(entries, -1, m_roots);
    endResetModel();
}

void CheckableUrlsModel::setMenu(const QUuid &id)
{
    m_menu = id;
    follow(true);
}

void CheckableUrlsModel::follow(bool always)
{
    QSet<QUrl> picked;
    if (const auto menu = m_store.menu(m_menu)) {
        for (const QUrl &url : menu->urls)
            picked.insert(url);
    }
    if (picked == m_picked && !always)
        return;
    m_picked = picked;
    if (!m_roots.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(int(m_roots.size()) - 1, 0), {Qt::CheckStateRole});
    for (int at = 0; at < m_nodes.size(); ++at) {
        const auto &children = m_nodes.at(at).children;
        if (!children.isEmpty())
            Q_EMIT dataChanged(createIndex(0, 0, quintptr(children.first())),
                               createIndex(int(children.size()) - 1, 0, quintptr(children.last())),
                               {Qt::CheckStateRole});
    }
}

QModelIndex CheckableUrlsModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    const QList<int> &rows = parent.isValid() ? node(parent).children : m_roots;
    return createIndex(row, column, quintptr(rows.at(row)));
}

QModelIndex CheckableUrlsModel::parent(const QModelIndex &child) const
{
    if (!child.isValid())
        return {};
    const int parent = node(child).parent;
    if (parent < 0)
        return {};
    const int grandparent = m_nodes.at(parent).parent;
    const QList<int> &siblings = grandparent < 0 ? m_roots : m_nodes.at(grandparent).children;
    return createIndex(int(siblings.indexOf(parent)), 0, quintptr(parent));
}

int CheckableUrlsModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return int(m_roots.size());
    return parent.column() == 0 ? int(node(parent).children.size()) : 0;
}

int CheckableUrlsModel::columnCount(const QModelIndex &) const
{
    return 1;
}

Qt::CheckState CheckableUrlsModel::checkState(const Node &node) const
{
    if (node.children.isEmpty())
        return m_picked.contains(node.entry.url) ? Qt::Checked : Qt::Unchecked;
    int checked = 0;
    for (const int child : node.children) {
        const Qt::CheckState state = checkState(m_nodes.at(child));
        if (state == Qt::PartiallyChecked)
            return Qt::PartiallyChecked;
        checked += state == Qt::Checked ? 1 : 0;
    }
    if (checked == 0)
        return Qt::Unchecked;
    return checked == node.children.size() ? Qt::Checked : Qt::PartiallyChecked;
}

QVariant CheckableUrlsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Node &item = node(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return item.entry.title;
    case Qt::DecorationRole:
        return item.entry.icon;
    case Qt::CheckStateRole:
        return m_menu.isNull() ? QVariant() : QVariant(checkState(item));
    case UrlRole:
        return item.entry.url;
    case FoldedTitleRole:
        return item.folded;
    default:
        return {};
    }
}

Qt::ItemFlags CheckableUrlsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
    if (node(index).children.isEmpty())
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

bool CheckableUrlsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || m_menu.isNull() || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const bool include = value.toInt() == Qt::Checked;
    // A heading's box stands for everything under it.
    QList<QUrl> urls;
    QList<int> pending{int(index.internalId())};
    while (!pending.isEmpty()) {
        const Node &item = m_nodes.at(pending.takeFirst());
        if (item.children.isEmpty())
            urls.append(item.entry.url);
        pending.append(item.children);
    }
    // Including again would move an item to the end of the menu.
    urls.removeIf([this, include](const QUrl &url) { return include == m_picked.contains(normalizedURL(url)); });
    if (urls.isEmpty())
        return true;
    // One change for a whole heading: the menu is saved once, not once per item.
    m_store.updateMenu(m_menu, [&urls, include](CustomMenu &menu) {
        for (const QUrl &url : std::as_const(urls)) {
            const QUrl normalized = normalizedURL(url);
            menu.urls.removeAll(normalized);
            if (include)
                menu.urls.append(normalized);
        }
    });
    return true;
}
