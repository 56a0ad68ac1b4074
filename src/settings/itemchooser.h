#pragma once

#include <QDialog>

class QAbstractItemModel;
class QTreeView;
class SystemStrings;

// A list of things with check boxes that go straight into a custom menu
// (settings places, applications, shortcuts), with a search field when the
// list is long.
class ItemChooser : public QDialog
{
    Q_OBJECT

public:
    // foldedRole: the model's role holding folded titles for the search field;
    // no search field when it is negative.
    ItemChooser(const QString &title, QAbstractItemModel *model, SystemStrings &strings, int foldedRole = -1,
                QWidget *parent = nullptr);

    QTreeView *view() const { return m_view; }

private:
    QTreeView *m_view;
};
