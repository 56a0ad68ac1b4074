#include "search/searchpanelmodel.h"

#include "common/mainthread.h"

#include <algorithm>

SearchPanelModel::SearchPanelModel(const ContentSources &sources, QObject *parent)
    : QObject(parent)
    , m_session(sources)
{
}

void SearchPanelModel::setQuery(const QString &query)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const bool wasBrowsing = isBrowsing();
    m_query = query;
    // Surrounding blanks are never what a person means to find; an empty
    // field shows nothing rather than everything.
    const QString text = query.trimmed();
    m_groups = text.isEmpty() ? QList<SearchGroup>{} : m_session.search(text, m_limit);

    const QList<SearchResult> all = results();
    const std::optional<QUrl> previous = m_selection;
    const bool kept = m_selection && std::any_of(all.cbegin(), all.cend(), [this](const SearchResult &result) {
                          return result.url == *m_selection;
                      });
    if (!kept)
        m_selection = all.isEmpty() ? std::nullopt : std::optional<QUrl>(all.first().url);
    Q_EMIT groupsChanged();
    if (m_selection != previous || wasBrowsing != isBrowsing())
        Q_EMIT selectionChanged();
}

QList<SearchResult> SearchPanelModel::results() const
{
    QList<SearchResult> all;
    for (const auto &group : m_groups)
        all.append(group.results);
    return all;
}

void SearchPanelModel::moveSelection(int step)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (isBrowsing()) {
        const auto before = m_browser->selected();
        m_browser->moveSelection(step);
        if (m_browser->selected() != before)
            Q_EMIT selectionChanged();
        return;
    }
    const QList<SearchResult> all = results();
    if (all.isEmpty())
        return;
    qsizetype current = -1;
    if (m_selection) {
        const auto found = std::find_if(all.cbegin(), all.cend(),
                                        [this](const SearchResult &result) { return result.url == *m_selection; });
        if (found != all.cend())
            current = found - all.cbegin();
    }
    const qsizetype next = std::clamp<qsizetype>(current + step, 0, all.size() - 1);
    select(all.at(next).url);
}

void SearchPanelModel::select(const std::optional<QUrl> &url)
{
    if (url == m_selection)
        return;
    m_selection = url;
    Q_EMIT selectionChanged();
}

void SearchPanelModel::browse(const QString &title, MenuEntries entries)
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_browser = std::make_unique<MenuBrowser>(title, std::move(entries));
    Q_EMIT groupsChanged();
    Q_EMIT selectionChanged();
}

bool SearchPanelModel::isBrowsing() const
{
    return m_browser && m_query.trimmed().isEmpty();
}

bool SearchPanelModel::enter(int entry)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!isBrowsing() || !m_browser->enter(entry))
        return false;
    Q_EMIT groupsChanged();
    Q_EMIT selectionChanged();
    return true;
}

bool SearchPanelModel::back()
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!isBrowsing() || !m_browser->back())
        return false;
    Q_EMIT groupsChanged();
    Q_EMIT selectionChanged();
    return true;
}

void SearchPanelModel::selectEntry(int entry)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!isBrowsing())
        return;
    const auto before = m_browser->selected();
    m_browser->select(entry);
    if (m_browser->selected() != before)
        Q_EMIT selectionChanged();
}
