#include "app/menubuilder.h"

#include "app/lazymenu.h"
#include "app/menuicon.h"
#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "platform/itemicons.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

MenuBuilder::MenuBuilder(const ContentSources &sources, Open open)
    : m_sources(sources)
    , m_open(std::move(open))
{
}

QString MenuBuilder::emptyTitle() const
{
    return m_sources.context().strings.text(SystemString::NoItems);
}

QAction *MenuBuilder::addOpenableItem(QMenu *menu, const QString &title, const QUrl &url, const QIcon &icon)
{
    QAction *action = menu->addAction(menuSizeIcon(icon), menuTitle(title));
    action->setData(url);
    QObject::connect(action, &QAction::triggered, menu, [open = m_open, url] { open(url); });
    return action;
}

QMenu *MenuBuilder::addSubmenu(QMenu *menu, const QString &title, const std::optional<ItemIcon> &icon,
                               std::function<MenuEntries()> fill)
{
    auto *submenu =
        new LazyMenu([this, fill = std::move(fill)](QMenu *m) { addEntries(m, fill()); }, emptyTitle(), menu);
    submenu->setTitle(menuTitle(title));
    submenu->setIcon(menuSizeIcon(drawnIcon(icon)));
    menu->addMenu(submenu);
    return submenu;
}

QAction *MenuBuilder::addSourceItem(QMenu *menu, const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const ContentSource &kind = m_sources.of(source);
    if (kind.isSingleItem()) {
        const qsizetype before = menu->actions().size();
        addEntries(menu, kind.items(source));
        return menu->actions().size() > before ? menu->actions().at(before) : nullptr;
    }
    QMenu *submenu =
        addSubmenu(menu, kind.title(source), kind.icon(source), [&kind, source] { return kind.items(source); });
    return submenu->menuAction();
}

void MenuBuilder::addItems(QMenu *menu, const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    addEntries(menu, m_sources.items(source));
}

void MenuBuilder::addMore(QMenu *menu, std::function<void(QMenu *)> fill)
{
    auto *more = new LazyMenu(std::move(fill), emptyTitle(), menu);
    more->setTitle(QCoreApplication::translate("MenuBuilder", "More"));
    menu->addMenu(more);
}

void MenuBuilder::addEntries(QMenu *menu, const MenuEntries &entries)
{
    const qsizetype start = menu->actions().size();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (menu->actions().size() - start >= maxItems) {
            addMore(menu, [this, rest = entries.mid(i)](QMenu *m) { addEntries(m, rest); });
            return;
        }
        addEntry(menu, entries.at(i));
    }
}

void MenuBuilder::addEntry(QMenu *menu, const MenuEntry &entry)
{
    std::visit(
        [&](const auto &item) {
            using T = std::decay_t<decltype(item)>;
            if constexpr (std::is_same_v<T, OpenableEntry>) {
                addOpenableItem(menu, item.title, item.url, drawnIcon(item.icon))->setEnabled(item.enabled);
            } else if constexpr (std::is_same_v<T, SubmenuEntry>) {
                addSubmenu(menu, item.title, item.icon, item.fill);
            } else if constexpr (std::is_same_v<T, SectionEntry>) {
                menu->addSection(menuTitle(item.title));
            } else if constexpr (std::is_same_v<T, SeparatorEntry>) {
                if (!menu->actions().isEmpty())
                    menu->addSeparator();
            } else {
                QAction *action = menu->addAction(menuTitle(item.title));
                QObject::connect(action, &QAction::triggered, menu, [run = item.run] { run(); });
            }
        },
        static_cast<const MenuEntry::variant &>(entry));
}
