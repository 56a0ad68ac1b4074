#pragma once

#include "sources/searchresult.h"

#include <QList>

// A search's results in ranks, best first, each rank in the order found; the
// first `limit` of them all are kept. A worse rank only fills what the better
// ones leave, so adding ranks never drops a result the better ones gave.
class RankedResults
{
public:
    RankedResults(qsizetype ranks, int limit);

    void add(qsizetype rank, SearchResult result);
    // Whether a later candidate can still make the cut: not once the best
    // rank alone fills the limit.
    bool wantsMore() const;
    QList<SearchResult> take() &&;

private:
    QList<QList<SearchResult>> m_ranks;
    qsizetype m_limit;
};
