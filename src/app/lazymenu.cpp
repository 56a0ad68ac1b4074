#include "app/lazymenu.h"

#include "common/mainthread.h"

LazyMenu::LazyMenu(Fill fill, QString emptyTitle, QWidget *parent)
    : QMenu(parent)
    , m_fill(std::move(fill))
    , m_emptyTitle(std::move(emptyTitle))
{
    connect(this, &QMenu::aboutToShow, this, &LazyMenu::fillIfNeeded);
}

void LazyMenu::fillIfNeeded()
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!m_fill)
        return;
    // Taken out first so a fill that re-enters cannot run twice.
    const Fill fill = std::exchange(m_fill, nullptr);
    fill(this);
    if (actions().isEmpty())
        addAction(m_emptyTitle)->setEnabled(false);
}
