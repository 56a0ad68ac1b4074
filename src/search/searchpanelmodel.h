#pragma once

#include "search/menubrowser.h"
#include "search/searchsession.h"

#include <QObject>

#include <memory>
#include <optional>

// What the search panel shows: the typed text, its grouped results and the
// selected result. The selection is held as a URL so it survives a new search
// that still finds the same item; otherwise the first result is selected.
// Its session, and so the session's caches, live as long as the model.
//
// Given a menu, an empty field shows that menu instead, one level at a time
// (browsing); typing searches as ever, and emptying the field again returns
// to the level that was shown.
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

    // One row down (+1) or up (-1), stopping at either end; in the menu
    // when browsing.
    void moveSelection(int step);

    // Shows `entries` while the field is empty, from the top, titled `title`.
    void browse(const QString &title, MenuEntries entries);
    bool isBrowsing() const;
    // The menu being walked, if one was given; null otherwise.
    const MenuBrowser *browser() const { return m_browser.get(); }
    // Into the submenu at `entry` of the level shown, or one level up.
    bool enter(int entry);
    bool back();
    void selectEntry(int entry);

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
    std::unique_ptr<MenuBrowser> m_browser;
};
