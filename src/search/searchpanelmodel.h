#pragma once

#include "search/searchsession.h"

#include <QObject>

#include <optional>

// What the search panel shows: the typed text, its grouped results and the
// selected result. The selection is held as a URL so it survives a new search
// that still finds the same item; otherwise the first result is selected.
// Its session, and so the session's caches, live as long as the model.
class SearchPanelModel : public QObject
{
    Q_OBJECT

public:
    static constexpr int defaultLimit = 12;

    SearchPanelModel(const ContentSources &sources, QObject *parent = nullptr);

    const QString &query() const { return m_query; }
    // Searches again at once, whatever changed.
    void setQuery(const QString &query);

    const QList<SearchGroup> &groups() const { return m_groups; }
    // All results of all groups, in group order.
    QList<SearchResult> results() const;
    const std::optional<QUrl> &selection() const { return m_selection; }
    int limit() const { return m_limit; }

    // One row down (+1) or up (-1), stopping at either end.
    void moveSelection(int step);

Q_SIGNALS:
    void groupsChanged();
    void selectionChanged();

private:
    void select(const std::optional<QUrl> &url);

    SearchSession m_session;
    QString m_query;
    QList<SearchGroup> m_groups;
    std::optional<QUrl> m_selection;
    int m_limit = defaultLimit;
};
