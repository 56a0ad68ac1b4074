#pragma once

#include "sources/itemicon.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

// One thing a search found, or a stored item address described.
struct SearchResult {
    QString title;
    QUrl url;
    std::optional<ItemIcon> icon;
    bool operator==(const SearchResult &) const = default;
};

struct SearchGroup {
    QString title;
    QList<SearchResult> results;
    bool operator==(const SearchGroup &) const = default;
};

size_t qHash(const SearchResult &result, size_t seed = 0) noexcept;
size_t qHash(const SearchGroup &group, size_t seed = 0) noexcept;
