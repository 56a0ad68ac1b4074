#pragma once

#include "catalog/catalog.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>
#include <variant>

// How a result's icon is found, resolved to an image where results are drawn
// (the search itself has no display).
struct FileIcon {
    QString path; // the icon the file manager shows for this path
    bool operator==(const FileIcon &) const = default;
};
struct NamedIcon {
    QString name; // a theme icon name or an image path, as desktop entries give it
    bool operator==(const NamedIcon &) const = default;
};
struct CatalogIcon {
    IconSpec description;
    bool operator==(const CatalogIcon &) const = default;
};
using ResultIcon = std::variant<FileIcon, NamedIcon, CatalogIcon>;

struct SearchResult {
    QString title;
    QUrl url;
    std::optional<ResultIcon> icon;
    bool operator==(const SearchResult &) const = default;
};

struct SearchGroup {
    QString title;
    QList<SearchResult> results;
    bool operator==(const SearchGroup &) const = default;
};

size_t qHash(const SearchResult &result, size_t seed = 0) noexcept;
size_t qHash(const SearchGroup &group, size_t seed = 0) noexcept;
