#pragma once

#include <QDialog>

#include <optional>

class QLineEdit;
class QListView;
class SearchFilterModel;
class SystemStrings;

// Chooses a custom menu's symbol from a searchable grid of the icon
// theme's symbolic icons, or "None" for the menu's own folder symbol.
// Choosing closes it.
class SymbolPicker : public QDialog
{
    Q_OBJECT

public:
    SymbolPicker(SystemStrings &strings, const std::optional<QString> &current, QWidget *parent = nullptr);

    std::optional<QString> symbol() const { return m_symbol; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void choose(const QModelIndex &index);

    QLineEdit *m_search;
    QListView *m_grid;
    SearchFilterModel *m_filter;
    std::optional<QString> m_symbol;
};
