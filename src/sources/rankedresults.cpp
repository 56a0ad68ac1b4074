#include "sources/rankedresults.h"

RankedResults::RankedResults(qsizetype ranks, int limit)
    : m_ranks(ranks)
    , m_limit(std::max(limit, 0))
{
}

void RankedResults::add(qsizetype rank, SearchResult result)
{
    QList<SearchResult> &list = m_ranks[rank];
    if (list.size() < m_limit)
        list.append(std::move(result));
}

bool RankedResults::wantsMore() const
{
    return m_ranks.first().size() < m_limit;
}

QList<SearchResult> RankedResults::take() &&
{
    QList<SearchResult> all;
    for (const QList<SearchResult> &rank : std::as_const(m_ranks)) {
        if (all.size() >= m_limit)
            break;
        all.append(rank.mid(0, m_limit - all.size()));
    }
    return all;
}
