#include "app/menuitemdescription.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QWindow>

namespace {

const char *const descriptionProperty = "accessibleDescription";

// What a screen reader reads: "&&" is a shown "&", a single "&" marks the
// mnemonic and is not read.
QString readable(const QString &title)
{
    QString text;
    text.reserve(title.size());
    for (qsizetype i = 0; i < title.size(); ++i) {
        if (title.at(i) == QLatin1Char('&') && i + 1 < title.size())
            ++i;
        text.append(title.at(i));
    }
    return text;
}

// A menu item as Qt's own menus present one, with its description added.
// Qt's class for menu items is private, so this one stands in for it for
// the items that have a description.
class DescribedMenuItem : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    explicit DescribedMenuItem(QAction *action)
        : m_action(action)
    {
    }

    bool isValid() const override { return m_action && owner(); }
    QObject *object() const override { return m_action; }
    QWindow *window() const override
    {
        const QMenu *menu = owner();
        return menu ? menu->window()->windowHandle() : nullptr;
    }

    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(owner()); }
    int childCount() const override { return m_action->menu() ? 1 : 0; }
    QAccessibleInterface *child(int index) const override
    {
        return index == 0 && m_action->menu() ? QAccessible::queryAccessibleInterface(m_action->menu()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child && m_action->menu() && child->object() == m_action->menu() ? 0 : -1;
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        QAccessibleInterface *submenu = child(0);
        return submenu && submenu->rect().contains(x, y) ? submenu : nullptr;
    }

    QString text(QAccessible::Text kind) const override
    {
        switch (kind) {
        case QAccessible::Name:
            return readable(m_action->text());
        case QAccessible::Description:
            return m_action->property(descriptionProperty).toString();
        case QAccessible::Accelerator:
            return m_action->shortcut().toString(QKeySequence::NativeText);
        default:
            return {};
        }
    }
    void setText(QAccessible::Text, const QString &) override { }

    QRect rect() const override
    {
        const QMenu *menu = owner();
        if (!menu)
            return {};
        return menu->actionGeometry(m_action).translated(menu->mapToGlobal(QPoint(0, 0)));
    }
    QAccessible::Role role() const override { return QAccessible::MenuItem; }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        const QMenu *menu = owner();
        state.invisible = !menu || !menu->isVisible() || !m_action->isVisible();
        state.disabled = !m_action->isEnabled();
        state.focused = menu && menu->activeAction() == m_action;
        state.checkable = m_action->isCheckable();
        state.checked = m_action->isChecked();
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }
    QStringList actionNames() const override { return {m_action->menu() ? showMenuAction() : pressAction()}; }
    void doAction(const QString &name) override
    {
        if (!m_action->isEnabled())
            return;
        if (name == pressAction())
            m_action->trigger();
        else if (QMenu *menu = owner(); menu && name == showMenuAction())
            menu->setActiveAction(m_action);
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    // The menu that shows the item.
    QMenu *owner() const
    {
        if (!m_action)
            return nullptr;
        for (QObject *object : m_action->associatedObjects()) {
            if (auto *menu = qobject_cast<QMenu *>(object); menu && menu->actions().contains(m_action.data()))
                return menu;
        }
        return nullptr;
    }

    QPointer<QAction> m_action;
};

QAccessibleInterface *describedMenuItems(const QString &, QObject *object)
{
    auto *action = qobject_cast<QAction *>(object);
    if (!action || !action->property(descriptionProperty).isValid())
        return nullptr;
    return new DescribedMenuItem(action);
}

} // namespace

void setAccessibleDescription(QAction *item, const QString &description)
{
    static const bool installed = [] {
        QAccessible::installFactory(describedMenuItems);
        return true;
    }();
    Q_UNUSED(installed);
    item->setProperty(descriptionProperty, description);
}
