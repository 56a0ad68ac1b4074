#pragma once

#include "catalog/custommenunode.h"
#include "config/layout.h"
#include "search/searchresult.h"
#include "sources/applibrary.h"
#include "sources/folderlisting.h"

#include <QHash>
#include <QIcon>
#include <QString>

#include <functional>

class MenuStore;
class QAction;
class QMenu;
class ShortcutLibrary;
class SystemStrings;

// Turns the sources of the menu into menu items. Openable items carry their
// URL as the action's data; choosing one calls `open`. Everything below the
// top level is a lazy submenu, filled when first pointed at.
class MenuBuilder
{
public:
    struct Context {
        MenuStore &store;
        ShortcutLibrary &shortcuts;
        SystemStrings &strings;
        const Catalog &catalog;
        const QHash<QUrl, Destination> &destinations;
    };
    using Open = std::function<void(const QUrl &url)>;

    MenuBuilder(Context context, Open open, std::function<void()> clearRecents);

    QString title(const MenuSource &source) const;
    QIcon icon(const MenuSource &source) const;
    // A folder that is gone, a menu that was deleted, a shortcut folder the
    // tool no longer lists.
    bool isAvailable(const MenuSource &source) const;

    // One item for the whole source: a submenu, or a single shortcut itself.
    QAction *addSourceItem(QMenu *menu, const MenuSource &source);
    // The source's items straight into `menu`.
    void addItems(QMenu *menu, const MenuSource &source);
    QAction *addOpenableItem(QMenu *menu, const QString &title, const QUrl &url, const QIcon &icon = {});

    // The text shown when a menu or a search has nothing to show.
    QString emptyTitle() const;
    // A search result's icon, drawn.
    static QIcon iconFor(const ResultIcon &icon);
    // The title and icon of a stored item address, whatever its kind.
    std::optional<SearchResult> describe(const QUrl &url) const;
    // A custom menu's symbol in its colour.
    static QIcon customMenuIcon(const std::optional<QString> &symbol, const std::optional<FolderColor> &color);

private:
    QMenu *addSubmenu(QMenu *menu, const QString &title, const QIcon &icon, std::function<void(QMenu *)> fill);
    void addFolderItems(QMenu *menu, const QUrl &folder, FolderSort sort);
    void addAppEntries(QMenu *menu, const QList<AppEntry> &entries);
    void addApplications(QMenu *menu);
    void addAllShortcuts(QMenu *menu);
    void addShortcuts(QMenu *menu, const QList<ShortcutRef> &shortcuts);
    void addRecents(QMenu *menu);
    void addCustomMenu(QMenu *menu, const CustomMenu &custom);
    void addSystemSettings(QMenu *menu);
    void addNodes(QMenu *menu, const QList<CustomMenuNode> &nodes, const QList<Item> &parentItems);
    void addNode(QMenu *menu, const CustomMenuNode &node);
    CustomMenuNode wholePane(const Pane &pane, int depth) const;

    Context m_context;
    Open m_open;
    std::function<void()> m_clearRecents;
};
