#pragma once

#include "sources/searchresult.h"

#include <QAbstractListModel>
#include <QHash>
#include <QIcon>
#include <QPointer>
#include <QStyledItemDelegate>

class SearchPanelModel;

// The panel's results as list rows: each group's heading, then its results.
// Icons are drawn once per URL for as long as the panel is shown, so typing
// does not look them up again at every key.
class SearchPanelRows : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { UrlRole = Qt::UserRole + 1, IsHeaderRole, IsSelectedRole };

    explicit SearchPanelRows(SearchPanelModel *model, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    // The row of the selected result, if any.
    QModelIndex selectedIndex() const;

private:
    struct Row {
        QString title;
        std::optional<QUrl> url; // absent for a heading
        QIcon icon;
    };

    void rebuild();
    void selectionMoved();
    int rowOf(const std::optional<QUrl> &url) const;
    QIcon iconFor(const SearchResult &result);

    QPointer<SearchPanelModel> m_model;
    QList<Row> m_rows;
    QHash<QUrl, QIcon> m_icons;
    std::optional<QUrl> m_painted; // the selection the rows last showed
};

// Draws a heading as small dimmed text and a result as its 32 px icon and its
// title, the selected one on the highlight colour.
class SearchPanelDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int headerHeight = 30;
    static constexpr int rowHeight = 44;
    static constexpr int iconSize = 32;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
