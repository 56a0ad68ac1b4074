#pragma once

#include <QAbstractListModel>
#include <QStringList>

// The symbols a custom menu can show: every symbolic icon the icon theme
// and the themes it inherits have, by name. Drawn as icons only: the names
// are for tooltips, screen readers and searching.
class SymbolicIconsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { SymbolRole = Qt::UserRole + 1, FoldedNameRole };

    explicit SymbolicIconsModel(const QStringList &names, QObject *parent = nullptr);

    // The *-symbolic icon names of the current theme, sorted.
    static QStringList themeSymbols();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // The row of a symbol, if the theme has it.
    QModelIndex indexOf(const std::optional<QString> &symbol) const;

private:
    QStringList m_names;
};
