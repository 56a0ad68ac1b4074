#include "settings/panetreemodel.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "platform/itemicons.h"
#include "sources/contentsources.h"

PaneTreeModel::PaneTreeModel(const ContentSources &sources, QObject *parent)
    : QAbstractItemModel(parent)
    , m_sources(sources)
{
    const Catalog &catalog = sources.context().catalog;
    QList<QString> path;
    QList<QString> tops;
    for (const auto &section : catalog.sections)
        tops.append(section);
    // A catalog without a top-level list starts at the panes no pane holds.
    if (tops.isEmpty()) {
        for (const auto &pane : catalog.panes) {
            if (!catalog.parent(pane.id))
                tops.append(pane.id);
        }
    }
    for (const QString &id : std::as_const(tops)) {
        if (const auto pane = catalog.pane(id))
            m_roots.append(addPane(*pane, -1, int(m_roots.size()), path));
    }
    connect(&sources.context().store, &MenuStore::menusChanged, this, [this] { follow(); });
}

int PaneTreeModel::addPane(const Pane &pane, int parent, int row, QList<QString> &path)
{
    SystemStrings &strings = m_sources.context().strings;
    const int at = int(m_nodes.size());
    m_nodes.append(Node{parent, row, strings.paneName(pane), pane.url, pane.icon, true, {}, {}});
    path.append(pane.id);
    QList<int> children;
    for (const Item &item : pane.items()) {
        const QString label = strings.itemLabel(item) + (item.kind == Kind::Sheet ? QStringLiteral("…") : QString());
        children.append(int(m_nodes.size()));
        m_nodes.append(Node{at, int(children.size()) - 1, label, item.url, item.icon, false, {}, {}});
    }
    for (const Pane &child : pane.childPanes(m_sources.context().catalog)) {
        // A catalog that lists a pane inside itself would never end.
        if (path.contains(child.id))
            continue;
        children.append(addPane(child, at, int(children.size()), path));
    }
    path.removeLast();
    QList<QUrl> descendants;
    for (const int child : std::as_const(children)) {
        descendants.append(m_nodes.at(child).url);
        descendants.append(m_nodes.at(child).descendants);
    }
    m_nodes[at].children = children;
    m_nodes[at].descendants = descendants;
    return at;
}

void PaneTreeModel::setMenu(const QUuid &id)
{
    m_menu = id;
    // Even with the same picks: the boxes appear or go with the menu.
    follow(true);
}

void PaneTreeModel::follow(bool always)
{
    const auto menu = m_sources.context().store.menu(m_menu);
    QSet<QUrl> picked;
    if (menu) {
        for (const QUrl &url : menu->urls)
            picked.insert(url);
    }
    if (picked == m_picked && !always)
        return;
    m_picked = picked;
    if (!m_roots.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(int(m_roots.size()) - 1, 0), {Qt::CheckStateRole});
    for (int at = 0; at < m_nodes.size(); ++at) {
        const Node &node = m_nodes.at(at);
        if (node.children.isEmpty())
            continue;
        const QModelIndex first = createIndex(0, 0, quintptr(node.children.first()));
        const QModelIndex last = createIndex(int(node.children.size()) - 1, 0, quintptr(node.children.last()));
        Q_EMIT dataChanged(first, last, {Qt::CheckStateRole});
    }
}

QModelIndex PaneTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    const QList<int> &rows = parent.isValid() ? m_nodes.at(int(parent.internalId())).children : m_roots;
    return createIndex(row, column, quintptr(rows.at(row)));
}

QModelIndex PaneTreeModel::parent(const QModelIndex &child) const
{
    if (!child.isValid())
        return {};
    const int parent = m_nodes.at(int(child.internalId())).parent;
    return parent < 0 ? QModelIndex() : createIndex(m_nodes.at(parent).row, 0, quintptr(parent));
}

int PaneTreeModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return int(m_roots.size());
    return parent.column() == 0 ? int(m_nodes.at(int(parent.internalId())).children.size()) : 0;
}

int PaneTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

Qt::CheckState PaneTreeModel::checkState(const Node &node) const
{
    if (m_picked.contains(node.url))
        return Qt::Checked;
    for (const QUrl &url : node.descendants) {
        if (m_picked.contains(url))
            return Qt::PartiallyChecked;
    }
    return Qt::Unchecked;
}

QVariant PaneTreeModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const int at = int(index.internalId());
    const Node &node = m_nodes.at(at);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return node.title;
    case Qt::DecorationRole: {
        auto cached = m_icons.constFind(at);
        if (cached == m_icons.constEnd())
            cached = m_icons.insert(at, drawnIcon(ItemIcon{CatalogIcon{node.icon}}));
        return *cached;
    }
    case Qt::CheckStateRole:
        return m_menu.isNull() ? QVariant() : QVariant(checkState(node));
    case UrlRole:
        return node.url;
    default:
        return {};
    }
}

Qt::ItemFlags PaneTreeModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
    if (m_nodes.at(int(index.internalId())).children.isEmpty())
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

bool PaneTreeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || m_menu.isNull() || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const Node &node = m_nodes.at(int(index.internalId()));
    const bool include = value.toInt() == Qt::Checked;
    // Including again would move the place to the end of the menu.
    if (include != m_picked.contains(node.url))
        m_sources.context().store.setIncluded(include, node.url, m_menu);
    return true;
}

QModelIndex PaneTreeModel::indexOf(const QUrl &url) const
{
    for (int at = 0; at < m_nodes.size(); ++at) {
        if (m_nodes.at(at).url == url)
            return createIndex(m_nodes.at(at).row, 0, quintptr(at));
    }
    return {};
}
