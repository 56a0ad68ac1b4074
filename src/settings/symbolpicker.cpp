#include "settings/symbolpicker.h"

#include "catalog/systemstrings.h"
#include "platform/itemicons.h"
#include "settings/searchfiltermodel.h"
#include "settings/symboliconsmodel.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

SymbolPicker::SymbolPicker(SystemStrings &strings, const std::optional<QString> &current, QWidget *parent)
    : QDialog(parent)
    , m_search(new QLineEdit(this))
    , m_grid(new QListView(this))
    , m_filter(new SearchFilterModel(SymbolicIconsModel::FoldedNameRole, this))
    , m_symbol(current)
{
    const QString title = strings.text(SystemString::Icon);
    setWindowTitle(title);
    auto *symbols = new SymbolicIconsModel(SymbolicIconsModel::themeSymbols(), this);
    m_filter->setSourceModel(symbols);

    const QString searchTitle = strings.text(SystemString::Search);
    m_search->setPlaceholderText(searchTitle);
    m_search->setAccessibleName(searchTitle);
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, m_filter, &SearchFilterModel::setQuery);
    // Enter takes the first match; Down goes on into the grid.
    connect(m_search, &QLineEdit::returnPressed, this, [this] { choose(m_filter->index(0, 0)); });
    m_search->installEventFilter(this);

    // The menu's own symbol, a folder.
    const QString noneTitle = strings.text(SystemString::None);
    auto *none = new QPushButton(drawnIcon(ItemIcon{MenuSymbolIcon{}}), noneTitle, this);
    none->setAccessibleName(noneTitle);
    none->setAutoDefault(false);
    connect(none, &QPushButton::clicked, this, [this] {
        m_symbol.reset();
        accept();
    });

    m_grid->setAccessibleName(title);
    m_grid->setViewMode(QListView::IconMode);
    m_grid->setResizeMode(QListView::Adjust);
    m_grid->setMovement(QListView::Static);
    m_grid->setUniformItemSizes(true);
    m_grid->setIconSize(QSize(24, 24));
    m_grid->setGridSize(QSize(40, 40));
    m_grid->setModel(m_filter);
    m_grid->setCurrentIndex(m_filter->mapFromSource(symbols->indexOf(current)));
    connect(m_grid, &QListView::activated, this, &SymbolPicker::choose);
    connect(m_grid, &QListView::clicked, this, &SymbolPicker::choose);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *top = new QHBoxLayout;
    top->addWidget(m_search, 1);
    top->addWidget(none);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_grid);
    layout->addWidget(buttons);
    resize(520, 420);
    m_search->setFocus();
}

bool SymbolPicker::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_search && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down) {
        m_grid->setFocus();
        if (!m_grid->currentIndex().isValid())
            m_grid->setCurrentIndex(m_filter->index(0, 0));
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void SymbolPicker::choose(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    m_symbol = index.data(SymbolicIconsModel::SymbolRole).toString();
    accept();
}
