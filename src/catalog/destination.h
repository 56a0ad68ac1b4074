#pragma once

#include "catalog/catalog.h"

#include <QHash>
#include <QUrl>

#include <optional>

// An openable place of the catalog: a pane, or an item inside a pane.
struct Destination {
    QUrl url;
    Pane pane;
    std::optional<Item> item;
    bool operator==(const Destination &) const = default;

    QUrl id() const { return url; }

    // Every pane and item URL of a catalog; a later entry with an URL seen
    // before replaces the earlier one.
    static QHash<QUrl, Destination> buildIndex(const Catalog &catalog);
    // The index of the process's catalog, built once.
    static const QHash<QUrl, Destination> &index();
    static std::optional<Destination> lookup(const QUrl &url);
};

size_t qHash(const Destination &destination, size_t seed = 0) noexcept;
