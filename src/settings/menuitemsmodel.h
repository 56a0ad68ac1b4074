#pragma once

#include "config/layout.h"

#include <QAbstractItemModel>
#include <QIcon>

class ContentSources;

// The items of one custom menu as the menu groups them: one row per kind
// that has items, in the menu's group order, holding that kind's items.
// Groups move by drag, and so do settings places within their group; the
// store does the moving. Follows the store and the shortcut library.
class MenuItemsModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Role { UrlRole = Qt::UserRole + 1, KindRole, UnavailableRole };
    static constexpr const char *mimeType = "application/x-quillon-menu-item-rows";

    explicit MenuItemsModel(const ContentSources &sources, QObject *parent = nullptr);

    void setMenu(const QUuid &id);
    QUuid menu() const { return m_menu; }
    bool isEmpty() const { return m_groups.isEmpty(); }

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    QModelIndex groupIndex(MenuItemKind kind) const;
    QModelIndex itemIndex(const QUrl &url) const;
    // Moves groups, or settings places within their group, to stand before
    // the row that is at destination now (the end when it is the count).
    bool moveGroups(const QList<int> &rows, int destination);
    bool moveSettings(const QList<int> &rows, int destination);
    // Takes the items out of the menu; a group row stands for all its items.
    void remove(const QModelIndexList &indexes);

private:
    struct Item {
        QUrl url;
        QString title;
        QIcon icon;
        bool unavailable = false;
    };
    struct Group {
        MenuItemKind kind;
        QList<Item> items;
    };

    void reload();
    QList<Group> load() const;
    Item describe(MenuItemKind kind, const QUrl &url) const;
    QString groupTitle(MenuItemKind kind) const;
    // Which drag a payload carries and the rows it names, if it is ours.
    std::optional<std::pair<std::optional<MenuItemKind>, QList<int>>> decode(const QMimeData *data) const;
    std::optional<int> dropRow(std::optional<MenuItemKind> dragged, int row, const QModelIndex &parent) const;

    const ContentSources &m_sources;
    QUuid m_menu;
    QList<Group> m_groups;
};
