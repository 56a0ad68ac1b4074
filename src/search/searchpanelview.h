#pragma once

#include "search/panelnotice.h"

#include <QElapsedTimer>
#include <QUrl>
#include <QWidget>

class QLabel;
class QLineEdit;
class QListView;
class SearchPanelModel;
class SearchPanelNotice;
class SearchPanelRows;

// The panel's content: a notice if there is one, the search field and, under
// it, the grouped results or the menu being browsed. It is as tall as what it
// shows, the list at most maxResultsHeight (less where the screen is small),
// and tells its owner whenever that height changes.
class SearchPanelView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int width = 680;
    static constexpr int fieldHeight = 72;
    static constexpr int maxResultsHeight = 460;

    SearchPanelView(SearchPanelModel *model, const QString &placeholder, const QString &emptyText,
                    QWidget *parent = nullptr);

    QLineEdit *field() const { return m_field; }
    QListView *results() const { return m_list; }
    SearchPanelNotice *notice() const { return m_notice; }
    // The size the content wants now.
    QSize contentSize() const;
    // The height of everything but the list: notice, field and the line under it.
    int fixedHeight() const;
    void setMaxResultsHeight(int height);
    // Shows `notice` above the field, in place of any before it.
    void setNotice(const PanelNotice &notice);

Q_SIGNALS:
    void openRequested(const QUrl &url);
    // A click on the entry at this index of the menu level shown.
    void entryActivated(int entry);
    void contentSizeChanged(const QSize &size);

private:
    void rowClicked(const QModelIndex &index);
    void showResults();
    void revealSelection();
    int resultsHeight() const;

    SearchPanelModel *m_model;
    QLineEdit *m_field;
    QWidget *m_divider;
    QListView *m_list;
    QLabel *m_empty;
    SearchPanelRows *m_rows;
    SearchPanelNotice *m_notice = nullptr;
    int m_resultsHeight = 0;
    int m_maxResultsHeight = maxResultsHeight;
    QElapsedTimer m_sinceLevelChange;
};
