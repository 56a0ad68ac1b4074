#include "catalog/custommenunode.h"

namespace {

class TreeBuilder
{
public:
    explicit TreeBuilder(const Catalog &catalog)
        : m_catalog(catalog)
    {
    }

    void pick(const Destination &destination)
    {
        CustomMenuNode &node = ensureNode(destination.pane);
        if (destination.item)
            node.items.append(*destination.item);
        else
            node.isPicked = true;
    }

    QList<CustomMenuNode> roots() const
    {
        QList<CustomMenuNode> result;
        for (const QString &id : m_order) {
            if (!m_parents.value(id))
                result.append(subtree(id));
        }
        return result;
    }

private:
    // A new node brings its ancestors along; they are listed after it.
    CustomMenuNode &ensureNode(const Pane &pane)
    {
        auto it = m_nodes.find(pane.id);
        if (it != m_nodes.end())
            return *it;
        it = m_nodes.insert(pane.id, CustomMenuNode{pane, false, {}, {}});
        m_order.append(pane.id);
        const auto parent = m_catalog.parent(pane.id);
        m_parents.insert(pane.id, parent ? std::optional<QString>(parent->id) : std::nullopt);
        if (parent)
            ensureNode(*parent);
        return m_nodes[pane.id];
    }

    CustomMenuNode subtree(const QString &id) const
    {
        CustomMenuNode node = m_nodes.value(id);
        for (const QString &childId : m_order) {
            if (m_parents.value(childId) == id)
                node.children.append(subtree(childId));
        }
        return node;
    }

    const Catalog &m_catalog;
    QHash<QString, CustomMenuNode> m_nodes;
    QHash<QString, std::optional<QString>> m_parents;
    QList<QString> m_order;
};

} // namespace

size_t qHash(const CustomMenuNode &node, size_t seed) noexcept
{
    seed = qHashMulti(seed, node.pane, node.isPicked);
    seed = qHashRange(node.items.cbegin(), node.items.cend(), seed);
    return qHashRange(node.children.cbegin(), node.children.cend(), seed);
}

QList<CustomMenuNode> CustomMenuNode::tree(const QList<QUrl> &picked, const Catalog &catalog,
                                           const QHash<QUrl, Destination> &index)
{
    TreeBuilder builder(catalog);
    for (const QUrl &url : picked) {
        const auto it = index.constFind(url);
        if (it != index.constEnd())
            builder.pick(*it);
    }
    return builder.roots();
}

QList<CustomMenuNode> CustomMenuNode::tree(const QList<QUrl> &picked)
{
    return tree(picked, Catalog::current(), Destination::index());
}

QList<CustomMenuNode> CustomMenuNode::tree(const CustomMenu &menu)
{
    return tree(menu.urls);
}
