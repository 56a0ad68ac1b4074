#pragma once

#include "sources/searchresult.h"

#include <QAbstractListModel>
#include <QHash>
#include <QIcon>
#include <QPointer>
#include <QStyledItemDelegate>

class SearchPanelModel;

// The panel's results as list rows: each group's heading, then its results.
// While the model browses a menu: the path to the level shown as a heading,
// then that level's entries. Icons are drawn once per URL for as long as the
// panel is shown, so typing does not look them up again at every key.
class SearchPanelRows : public QAbstractListModel
{
    Q_OBJECT

public:
    enum class Kind { Heading, Item, Submenu, Command, Separator };
    enum Role {
        UrlRole = Qt::UserRole + 1,
        IsHeaderRole,
        IsSelectedRole,
        KindRole,      // Kind, as an int
        EntryRole,     // the menu entry's index in its level; -1 for search rows
        IsEnabledRole, // false for an item whose file is gone, or a source that is not there
    };

    explicit SearchPanelRows(SearchPanelModel *model, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    // The row of the selected result or entry, if any.
    QModelIndex selectedIndex() const;

private:
    struct Row {
        Kind kind = Kind::Item;
        QString title;
        std::optional<QUrl> url;
        QIcon icon;
        int entry = -1;
        bool enabled = true;
    };

    void rebuild();
    void addGroups();
    void addMenuLevel();
    void selectionMoved();
    bool isSelected(const Row &row) const;
    QIcon iconFor(const QUrl &url, const std::optional<ItemIcon> &icon);

    QPointer<SearchPanelModel> m_model;
    QList<Row> m_rows;
    QHash<QUrl, QIcon> m_icons;
};

// Draws a heading as small dimmed text, a separator as a thin line, and a
// result or menu entry as its 32 px icon and its title (a submenu with an
// arrow at its end), the selected one on the highlight colour.
class SearchPanelDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int headerHeight = 30;
    static constexpr int rowHeight = 44;
    static constexpr int separatorHeight = 9;
    static constexpr int iconSize = 32;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
