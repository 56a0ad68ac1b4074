#pragma once

#include "config/layout.h"

#include <QAbstractTableModel>

class ContentSources;
class MenuStore;

// The status menu's layout as rows: each source with its icon, title and
// style, in layout order. Rows are dragged as DraggedSource values, several
// at once, and dropping them moves them in the store. Follows the store.
class LayoutModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TitleColumn, StyleColumn, ColumnCount };
    enum Role { SourceRole = Qt::UserRole + 1, IsRemovableRole, IsAvailableRole };

    LayoutModel(MenuStore &store, const ContentSources &sources, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;
    Qt::DropActions supportedDropActions() const override;

    // What a style is called in the settings window ("Menu", "Submenu", "Don’t Show").
    QString styleName(SourceStyle style) const;
    MenuSource source(int row) const;

private:
    QList<MenuSource> draggedSources(const QMimeData *data) const;

    MenuStore &m_store;
    const ContentSources &m_sources;
    // The rows as shown: the store has already changed when the view is told
    // it is about to, and the view still asks about the old rows then.
    QList<LayoutEntry> m_layout;
};
