#pragma once

#include "sources/contentsources.h"
#include "sources/searchresult.h"

#include <QHash>

#include <map>
#include <memory>

// One search over what the user's menus make reachable, grouped by kind.
// What the sources read from disk is read at most once per session; make a
// new session for fresh content. Main thread only.
class SearchSession
{
public:
    explicit SearchSession(const ContentSources &sources);

    QList<SearchGroup> search(const QString &query, int limit);
    // The display form of one stored item address, if it still exists.
    std::optional<SearchResult> entry(const QUrl &url);

private:
    const ContentSources &m_sources;
    std::map<MenuItemKind, std::unique_ptr<SourceSearch>> m_librarySearches;
    QHash<MenuSource, std::shared_ptr<SourceSearch>> m_sourceSearches;
};
