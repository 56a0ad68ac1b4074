#include "app/searchfieldaction.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>

SearchFieldAction::SearchFieldAction(const QString &placeholder, QObject *parent)
    : QWidgetAction(parent)
{
    // At least 260 wide, as wide as the menu's longest item, and as tall as
    // the field needs at the desktop's font size.
    auto *container = new QWidget;
    container->setMinimumWidth(minimumWidth);
    container->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto *layout = new QHBoxLayout(container);
    layout->setContentsMargins(12, 4, 12, 4);
    m_field = new QLineEdit(container);
    m_field->setPlaceholderText(placeholder);
    m_field->setClearButtonEnabled(true);
    m_field->setFrame(true);
    layout->addWidget(m_field);
    setDefaultWidget(container);

    connect(m_field, &QLineEdit::textEdited, this, &SearchFieldAction::textEdited);
    connect(m_field, &QLineEdit::returnPressed, this, &SearchFieldAction::returnPressed);
}

QString SearchFieldAction::text() const
{
    return m_field->text();
}

void SearchFieldAction::clear()
{
    m_field->clear();
}

void SearchFieldAction::focusField()
{
    if (auto *menu = qobject_cast<QMenu *>(m_field->window()))
        menu->setActiveAction(this);
    m_field->setFocus(Qt::PopupFocusReason);
}
