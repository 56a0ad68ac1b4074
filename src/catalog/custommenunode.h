#pragma once

#include "catalog/catalog.h"
#include "catalog/destination.h"
#include "config/layout.h"

#include <QHash>
#include <QList>
#include <QUrl>

// One pane in the tree of a custom menu. A node may be neither picked nor
// hold items: it is there because something below it was picked, so the
// path from the top of the catalog to every picked place stays visible.
struct CustomMenuNode {
    Pane pane;
    bool isPicked = false;
    QList<Item> items;
    QList<CustomMenuNode> children;
    bool operator==(const CustomMenuNode &) const = default;

    // The roots of the tree the picked URLs form over the catalog. URLs the
    // catalog does not know are left out.
    static QList<CustomMenuNode> tree(const QList<QUrl> &picked, const Catalog &catalog,
                                      const QHash<QUrl, Destination> &index);
    static QList<CustomMenuNode> tree(const QList<QUrl> &picked);
    static QList<CustomMenuNode> tree(const CustomMenu &menu);
};

size_t qHash(const CustomMenuNode &node, size_t seed = 0) noexcept;
