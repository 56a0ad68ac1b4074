#include "settings/itemchooser.h"

#include "catalog/systemstrings.h"
#include "settings/searchfiltermodel.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QTreeView>
#include <QVBoxLayout>

ItemChooser::ItemChooser(const QString &title, QAbstractItemModel *model, SystemStrings &strings, int foldedRole,
                         QWidget *parent)
    : QDialog(parent)
    , m_view(new QTreeView(this))
{
    setWindowTitle(title);
    auto *layout = new QVBoxLayout(this);
    m_view->setHeaderHidden(true);
    m_view->setAccessibleName(title);
    m_view->setUniformRowHeights(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    if (foldedRole >= 0) {
        auto *filter = new SearchFilterModel(foldedRole, this);
        filter->setSourceModel(model);
        m_view->setModel(filter);
        auto *search = new QLineEdit(this);
        const QString searchTitle = strings.text(SystemString::Search);
        search->setPlaceholderText(searchTitle);
        search->setAccessibleName(searchTitle);
        search->setClearButtonEnabled(true);
        connect(search, &QLineEdit::textChanged, this, [this, filter](const QString &text) {
            filter->setQuery(text);
            // What matched inside a heading shows without opening it.
            if (!text.isEmpty())
                m_view->expandAll();
        });
        connect(search, &QLineEdit::returnPressed, m_view, qOverload<>(&QWidget::setFocus));
        layout->addWidget(search);
    } else {
        m_view->setModel(model);
    }
    if (m_view->model()->rowCount() > 0)
        m_view->setCurrentIndex(m_view->model()->index(0, 0));
    layout->addWidget(m_view);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(460, 520);
}
