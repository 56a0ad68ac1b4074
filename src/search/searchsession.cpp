#include "search/searchsession.h"

#include "common/mainthread.h"
#include "config/menustore.h"
#include "sources/textmatch.h"

size_t qHash(const SearchResult &result, size_t seed) noexcept
{
    return qHashMulti(seed, result.title, result.url);
}

size_t qHash(const SearchGroup &group, size_t seed) noexcept
{
    return qHashMulti(seed, group.title, qHashRange(group.results.begin(), group.results.end()));
}

SearchSession::SearchSession(const ContentSources &sources)
    : m_sources(sources)
{
}

QList<SearchGroup> SearchSession::search(const QString &query, int limit)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // Only what the menus make reachable: visible sources, and the kinds of
    // item they hold.
    QList<MenuSource> visible;
    QSet<MenuItemKind> reachable;
    for (const auto &entry : m_sources.context().store.layout()) {
        if (entry.style == SourceStyle::Hidden)
            continue;
        visible.append(entry.source);
        reachable.unite(m_sources.of(entry.source).reachableKinds(entry.source));
    }

    const TextMatcher matcher(query);
    QList<SearchGroup> groups;
    // Whole kinds first, in the order of the sources that stand for them…
    for (const ContentSource *source : m_sources.all()) {
        const auto kind = source->libraryKind();
        if (!kind || !reachable.contains(*kind))
            continue;
        auto &search = m_librarySearches[*kind];
        if (!search)
            search = source->searchLibrary();
        if (search)
            // Such sources are named alike whatever instance is asked.
            groups.append({source->title({}), search->results(matcher, limit)});
    }
    // …then each visible source with items of its own, in layout order.
    for (const auto &source : std::as_const(visible)) {
        auto search = m_sourceSearches.value(source);
        if (!search) {
            search = m_sources.of(source).searchSource(source);
            if (!search)
                continue;
            m_sourceSearches.insert(source, search);
        }
        groups.append({m_sources.title(source), search->results(matcher, limit)});
    }
    groups.removeIf([](const SearchGroup &group) { return group.results.isEmpty(); });
    return groups;
}

std::optional<SearchResult> SearchSession::entry(const QUrl &url)
{
    QUILLON_ASSERT_MAIN_THREAD();
    return m_sources.describe(url);
}
