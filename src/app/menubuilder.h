#pragma once

#include "sources/contentsources.h"

#include <QIcon>
#include <QString>

#include <chrono>
#include <functional>

class QAction;
class QMenu;

// Turns what the content sources describe into menu items. Openable items
// carry their URL as the action's data; choosing one calls `open`. Every
// submenu is lazy, filled when first pointed at.
class MenuBuilder
{
public:
    using Open = std::function<void(const QUrl &url)>;

    // Items in one menu; past them a "More" submenu holds the rest. Qt takes
    // time for every item a menu already holds when one is added, and nobody
    // scrolls through thousands. Above what a folder lists, with its extras.
    static constexpr int maxItems = 500;

    MenuBuilder(const ContentSources &sources, Open open);

    // One item for the whole source: a submenu, or a single shortcut itself.
    QAction *addSourceItem(QMenu *menu, const MenuSource &source);
    // The source's items straight into `menu`.
    void addItems(QMenu *menu, const MenuSource &source);
    void addEntries(QMenu *menu, const MenuEntries &entries);
    // The "More" submenu at the end of a full menu, filled when it opens.
    void addMore(QMenu *menu, std::function<void(QMenu *)> fill);
    QAction *addOpenableItem(QMenu *menu, const QString &title, const QUrl &url, const QIcon &icon = {});

    // The text shown when a menu or a search has nothing to show.
    QString emptyTitle() const;

    // Whether some of the menu's items are still being read.
    static bool isLoading(const QMenu *menu);
    // Waits, handling events, until the menu holds no item still being read
    // or the time is up; for printing a menu, never for showing one.
    static void waitUntilLoaded(const QMenu *menu, std::chrono::milliseconds timeout);

private:
    void addEntry(QMenu *menu, const MenuEntry &entry);
    QMenu *addSubmenu(QMenu *menu, const QString &title, const std::optional<ItemIcon> &icon,
                      std::function<MenuEntries()> fill, bool fillsOffThread = false);
    // Entries that are read from disk: on a worker when there is one, with a
    // "Loading…" item in their place until they arrive.
    void addEntriesLater(QMenu *menu, std::function<MenuEntries()> work);
    void placeLoadedEntries(QMenu *menu, QAction *placeholder, const std::optional<MenuEntries> &entries);
    static void keepOnScreen(QMenu *menu);

    const ContentSources &m_sources;
    Open m_open;
};
