#include "catalog/destination.h"

size_t qHash(const Destination &destination, size_t seed) noexcept
{
    seed = qHashMulti(seed, destination.url, destination.pane);
    return destination.item ? qHash(*destination.item, qHash(1, seed)) : qHash(0, seed);
}

QHash<QUrl, Destination> Destination::buildIndex(const Catalog &catalog)
{
    QHash<QUrl, Destination> index;
    for (const Pane &pane : catalog.panes) {
        // A heading pane has no URL and so is no destination.
        if (!pane.url.isEmpty())
            index.insert(pane.url, Destination{pane.url, pane, std::nullopt});
        for (const Item &item : pane.items())
            index.insert(item.url, Destination{item.url, pane, item});
    }
    return index;
}

const QHash<QUrl, Destination> &Destination::index()
{
    static const QHash<QUrl, Destination> index = buildIndex(Catalog::current());
    return index;
}

std::optional<Destination> Destination::lookup(const QUrl &url)
{
    const auto it = index().constFind(url);
    if (it == index().constEnd())
        return std::nullopt;
    return *it;
}
