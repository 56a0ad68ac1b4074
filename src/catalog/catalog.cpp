#include "catalog/catalog.h"

#include <QHashFunctions>
#include <QSet>

namespace {

template<typename T>
size_t hashOptional(const std::optional<T> &value, size_t seed)
{
    return value ? qHash(*value, qHash(1, seed)) : qHash(0, seed);
}

template<typename E>
size_t hashOptionalEnum(const std::optional<E> &value, size_t seed)
{
    return qHash(value ? int(*value) : -1, seed);
}

// A pane that lists one of its ancestors as a child would lead the walk in
// circles; such a child is not entered again.
void appendDescendantURLs(const Pane &pane, const Catalog &catalog, QSet<QString> &path, QList<QUrl> &result)
{
    for (const Item &item : pane.items())
        result.append(item.url);
    for (const Pane &child : pane.childPanes(catalog)) {
        if (!child.url.isEmpty())
            result.append(child.url);
        if (path.contains(child.id))
            continue;
        path.insert(child.id);
        appendDescendantURLs(child, catalog, path, result);
        path.remove(child.id);
    }
}

} // namespace

size_t qHash(const StringRef &ref, size_t seed) noexcept
{
    return qHashMulti(seed, ref.table, ref.key);
}

size_t qHash(const IconSpec &icon, size_t seed) noexcept
{
    seed = hashOptional(icon.bundlePath, seed);
    seed = hashOptional(icon.symbol, seed);
    seed = hashOptional(icon.symbolBackground, seed);
    seed = hashOptionalEnum(icon.symbolRendering, seed);
    seed = hashOptional(icon.symbolColor, seed);
    seed = hashOptional(icon.symbolMirrored, seed);
    seed = hashOptional(icon.symbolSize, seed);
    seed = hashOptional(icon.symbolPrivate, seed);
    return hashOptional(icon.symbolFallback, seed);
}

size_t qHash(const Item &item, size_t seed) noexcept
{
    seed = qHash(item.label, seed);
    if (item.labelRefs) {
        for (const auto &ref : *item.labelRefs)
            seed = hashOptional(ref, seed);
    } else {
        seed = qHash(-1, seed);
    }
    seed = hashOptionalEnum(item.labelSource, seed);
    return qHashMulti(seed, int(item.kind), item.url, item.icon);
}

size_t qHash(const ItemSection &section, size_t seed) noexcept
{
    seed = hashOptional(section.title, seed);
    seed = hashOptional(section.titleRef, seed);
    return qHashRange(section.items.cbegin(), section.items.cend(), seed);
}

size_t qHash(const Pane &pane, size_t seed) noexcept
{
    seed = qHashMulti(seed, pane.id, pane.name);
    seed = hashOptional(pane.nameRef, seed);
    seed = qHashMulti(seed, pane.url, pane.icon);
    seed = qHashRange(pane.sections.cbegin(), pane.sections.cend(), seed);
    return hashOptional(pane.children, seed);
}

size_t qHash(const Catalog &catalog, size_t seed) noexcept
{
    seed = qHashMulti(seed, catalog.osVersion, catalog.sections);
    seed = qHashRange(catalog.panes.cbegin(), catalog.panes.cend(), seed);
    if (!catalog.strings)
        return qHash(-1, seed);
    for (auto it = catalog.strings->cbegin(); it != catalog.strings->cend(); ++it)
        seed = hashOptional(it.value(), qHash(it.key(), seed));
    return seed;
}

std::optional<Pane> Catalog::pane(const QString &id) const
{
    for (const Pane &candidate : panes) {
        if (candidate.id == id)
            return candidate;
    }
    return std::nullopt;
}

std::optional<Pane> Catalog::parent(const QString &id) const
{
    for (const Pane &candidate : panes) {
        if (!candidate.children)
            continue;
        for (const auto &group : *candidate.children) {
            if (group.contains(id))
                return candidate;
        }
    }
    return std::nullopt;
}

QList<Item> Pane::items() const
{
    QList<Item> result;
    for (const ItemSection &section : sections)
        result.append(section.items);
    return result;
}

QList<QList<Pane>> Pane::childGroups(const Catalog &catalog) const
{
    QList<QList<Pane>> result;
    if (!children)
        return result;
    for (const auto &ids : *children) {
        QList<Pane> group;
        for (const QString &id : ids) {
            if (auto child = catalog.pane(id))
                group.append(std::move(*child));
        }
        if (!group.isEmpty())
            result.append(group);
    }
    return result;
}

QList<QList<Pane>> Pane::childGroups() const
{
    return childGroups(Catalog::current());
}

QList<Pane> Pane::childPanes(const Catalog &catalog) const
{
    QList<Pane> result;
    for (const auto &group : childGroups(catalog))
        result.append(group);
    return result;
}

QList<Pane> Pane::childPanes() const
{
    return childPanes(Catalog::current());
}

QList<QUrl> Pane::descendantURLs(const Catalog &catalog) const
{
    QList<QUrl> result;
    QSet<QString> path{id};
    appendDescendantURLs(*this, catalog, path, result);
    return result;
}

QList<QUrl> Pane::descendantURLs() const
{
    return descendantURLs(Catalog::current());
}
