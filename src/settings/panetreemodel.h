#pragma once

#include "catalog/catalog.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>
#include <QSet>
#include <QUuid>

class ContentSources;

// The settings catalog as a tree of panes and the places inside them, each
// with a check box that puts its URL in a custom menu or takes it out. A
// pane that is not picked itself but holds picked places is partly checked.
class PaneTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Role { UrlRole = Qt::UserRole + 1 };

    explicit PaneTreeModel(const ContentSources &sources, QObject *parent = nullptr);

    void setMenu(const QUuid &id);

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    QModelIndex indexOf(const QUrl &url) const;

private:
    struct Node {
        int parent = -1;
        int row = 0;
        QString title;
        QUrl url;
        IconSpec icon;
        bool isPane = false;
        QList<int> children;
        QList<QUrl> descendants;
    };

    int addPane(const Pane &pane, int parent, int row, QList<QString> &path);
    void follow(bool always = false);
    Qt::CheckState checkState(const Node &node) const;

    const ContentSources &m_sources;
    QUuid m_menu;
    QList<Node> m_nodes;
    QList<int> m_roots;
    QSet<QUrl> m_picked;
    mutable QHash<int, QIcon> m_icons;
};
