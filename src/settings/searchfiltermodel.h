#pragma once

#include <QSortFilterProxyModel>

// Keeps the rows whose title holds what was typed, ignoring case and
// accents, and the headings above them. Reads a model's folded titles from
// foldedRole when it has them, so a keystroke over thousands of rows stays
// cheap.
class SearchFilterModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit SearchFilterModel(int foldedRole = -1, QObject *parent = nullptr);

    void setQuery(const QString &query);
    // While a query filters, a heading's check box stands for the rows that
    // show under it, not for those the query hides.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;

private:
    int m_foldedRole;
    QString m_folded;
};
