#pragma once

#include <QAbstractItemModel>
#include <QIcon>
#include <QSet>
#include <QUrl>
#include <QUuid>

class MenuStore;

// Things a custom menu can hold (applications, shortcuts), each with a
// check box that puts its URL in the menu or takes it out, optionally filed
// under headings (a category, a shortcut folder) whose box stands for all
// they hold.
class CheckableUrlsModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    // A thing to pick, or a heading over things when it has children.
    struct Entry {
        QString title;
        QUrl url;
        QIcon icon;
        QList<Entry> children;
    };
    enum Role { UrlRole = Qt::UserRole + 1, FoldedTitleRole };

    explicit CheckableUrlsModel(MenuStore &store, QObject *parent = nullptr);

    void setMenu(const QUuid &id);
    // What there is to pick; set again when it changes (the shortcuts tool
    // answered, a scan of the applications finished).
    void setEntries(const QList<Entry> &entries);

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

private:
    struct Node {
        Entry entry;
        QString folded;
        int parent = -1;
        QList<int> children;
    };

    void follow(bool always = false);
    const Node &node(const QModelIndex &index) const { return m_nodes.at(int(index.internalId())); }
    Qt::CheckState checkState(const Node &node) const;
    void add(const QList<Entry> &entries, int parent, QList<int> &rows);

    MenuStore &m_store;
    QUuid m_menu;
    QList<Node> m_nodes;
    QList<int> m_roots;
    QSet<QUrl> m_picked;
};
