#include "app/menubuilder.h"

#include "app/lazymenu.h"
#include "app/menuicon.h"
#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "platform/itemicons.h"
#include "sources/listingqueue.h"

#include <QAction>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QMenu>
#include <QPointer>
#include <QScreen>
#include <QTimer>

#include <algorithm>

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
                               std::function<MenuEntries()> fill, bool fillsOffThread)
{
    auto *submenu = new LazyMenu(
        [this, fill = std::move(fill), fillsOffThread](QMenu *m) {
            if (fillsOffThread)
                addEntriesLater(m, fill);
            else
                addEntries(m, fill());
        },
        emptyTitle(), menu);
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
    if (auto work = kind.itemsOffThread(source))
        return addSubmenu(menu, kind.title(source), kind.icon(source), std::move(work), true)->menuAction();
    QMenu *submenu =
        addSubmenu(menu, kind.title(source), kind.icon(source), [&kind, source] { return kind.items(source); });
    return submenu->menuAction();
}

void MenuBuilder::addItems(QMenu *menu, const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (auto work = m_sources.of(source).itemsOffThread(source))
        return addEntriesLater(menu, std::move(work));
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
                addSubmenu(menu, item.title, item.icon, item.fill, item.fillsOffThread);
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

namespace {

// Marks the item that stands in for entries still being read.
constexpr char loadingProperty[] = "quillonLoading";

} // namespace

void MenuBuilder::addEntriesLater(QMenu *menu, std::function<MenuEntries()> work)
{
    ListingQueue *queue = m_sources.context().listings;
    if (!queue) {
        addEntries(menu, work());
        return;
    }
    QAction *placeholder = menu->addAction(menuTitle(QCoreApplication::translate("MenuBuilder", "Loading…")));
    placeholder->setEnabled(false);
    placeholder->setProperty(loadingProperty, true);
    queue->run(std::move(work), [this, menu = QPointer<QMenu>(menu), placeholder = QPointer<QAction>(placeholder)](
                                    const std::optional<MenuEntries> &entries) {
        // The status menu is rebuilt at each opening: a late listing may find
        // its menu gone.
        if (menu && placeholder)
            placeLoadedEntries(menu, placeholder, entries);
    });
}

void MenuBuilder::placeLoadedEntries(QMenu *menu, QAction *placeholder, const std::optional<MenuEntries> &entries)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const qsizetype before = menu->actions().size();
    if (entries)
        addEntries(menu, *entries);
    const QList<QAction *> added = menu->actions().mid(before);
    for (QAction *action : added)
        menu->insertAction(placeholder, action);
    // A menu of nothing but this item says so, as any empty menu does.
    if (menu->actions().size() == 1) {
        placeholder->setText(menuTitle(emptyTitle()));
        placeholder->setProperty(loadingProperty, QVariant());
        return;
    }
    menu->removeAction(placeholder);
    placeholder->deleteLater();
    keepOnScreen(menu);
}

void MenuBuilder::keepOnScreen(QMenu *menu)
{
    // Qt grows a menu that is already shown where it stands; a long listing
    // would then run off the screen's edge.
    if (!menu->isVisible() || !menu->screen())
        return;
    const QRect screen = menu->screen()->availableGeometry();
    QRect geometry(menu->pos(), menu->sizeHint());
    if (geometry.right() > screen.right())
        geometry.moveRight(screen.right());
    if (geometry.bottom() > screen.bottom())
        geometry.moveBottom(screen.bottom());
    geometry.moveTopLeft({std::max(geometry.left(), screen.left()), std::max(geometry.top(), screen.top())});
    menu->setGeometry(geometry);
}

bool MenuBuilder::isLoading(const QMenu *menu)
{
    const QList<QAction *> actions = menu->actions();
    return std::any_of(actions.begin(), actions.end(),
                       [](const QAction *action) { return action->property(loadingProperty).toBool(); });
}

void MenuBuilder::waitUntilLoaded(const QMenu *menu, std::chrono::milliseconds timeout)
{
    QDeadlineTimer deadline(timeout);
    while (isLoading(menu) && !deadline.hasExpired()) {
        QEventLoop wait;
        QTimer::singleShot(10, &wait, &QEventLoop::quit);
        wait.exec();
    }
}
