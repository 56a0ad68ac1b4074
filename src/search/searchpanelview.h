#pragma once

#include <QUrl>
#include <QWidget>

class QLabel;
class QLineEdit;
class QListView;
class SearchPanelModel;
class SearchPanelRows;

// The panel's content: the search field and, under it, the grouped results.
// It is as tall as what it shows, the results list at most maxResultsHeight,
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
    // The size the content wants now.
    QSize contentSize() const;

Q_SIGNALS:
    void openRequested(const QUrl &url);
    void contentSizeChanged(const QSize &size);

private:
    void showResults();
    void revealSelection();
    int resultsHeight() const;

    SearchPanelModel *m_model;
    QLineEdit *m_field;
    QWidget *m_divider;
    QListView *m_list;
    QLabel *m_empty;
    SearchPanelRows *m_rows;
    int m_resultsHeight = 0;
};
