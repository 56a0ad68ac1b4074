#include "app/menubuilder.h"

#include "app/lazymenu.h"
#include "app/menuicon.h"
#include "catalog/paneicon.h"
#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "config/menustore.h"
#include "config/urls.h"
#include "platform/fileicons.h"
#include "platform/settingscommand.h"
#include "search/itemdescription.h"
#include "sources/shortcutlibrary.h"
#include "sources/sourcetitles.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>
#include <QPainter>

namespace {

QIcon firstThemeIcon(std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        if (QIcon::hasThemeIcon(QLatin1String(name)))
            return QIcon::fromTheme(QLatin1String(name));
    }
    return {};
}

// Tints that read on light and dark menus alike.
QColor tint(FolderColor color)
{
    switch (color) {
    case FolderColor::Blue:
        return QColor(0x35, 0x84, 0xe4);
    case FolderColor::Purple:
        return QColor(0x91, 0x41, 0xac);
    case FolderColor::Pink:
        return QColor(0xd5, 0x61, 0x99);
    case FolderColor::Red:
        return QColor(0xe0, 0x1b, 0x24);
    case FolderColor::Orange:
        return QColor(0xed, 0x74, 0x00);
    case FolderColor::Yellow:
        return QColor(0xe5, 0xa5, 0x0a);
    case FolderColor::Green:
        return QColor(0x2e, 0xc2, 0x7e);
    case FolderColor::Graphite:
        return QColor(0x77, 0x76, 0x7b);
    }
    return QColor(0x35, 0x84, 0xe4);
}

} // namespace

MenuBuilder::MenuBuilder(Context context, Open open, std::function<void()> clearRecents)
    : m_context(context)
    , m_open(std::move(open))
    , m_clearRecents(std::move(clearRecents))
{
}

QString MenuBuilder::emptyTitle() const
{
    return m_context.strings.text(SystemString::NoItems);
}

QString MenuBuilder::title(const MenuSource &source) const
{
    switch (source.kind()) {
    case MenuSource::Case::Applications:
        return applicationsTitle();
    case MenuSource::Case::SystemSettings:
        return m_context.strings.text(SystemString::SystemSettings);
    case MenuSource::Case::Shortcuts:
        return shortcutsTitle();
    case MenuSource::Case::Recents:
        return m_context.strings.text(SystemString::Recents);
    case MenuSource::Case::CustomMenu: {
        const auto menu = m_context.store.menu(*source.uuid());
        return menu ? menu->name : QString();
    }
    case MenuSource::Case::Folder: {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder ? folderTitle(folder->url) : QString();
    }
    case MenuSource::Case::ShortcutFolder:
    case MenuSource::Case::Shortcut:
        return source.shortcutRef()->name;
    case MenuSource::Case::Separator:
        return {};
    }
    return {};
}

QIcon MenuBuilder::icon(const MenuSource &source) const
{
    switch (source.kind()) {
    case MenuSource::Case::Applications:
        return firstThemeIcon({"view-app-grid-symbolic", "applications-all", "applications-other", "application-x-executable"});
    case MenuSource::Case::SystemSettings:
        return PaneIcon::settingsAppIcon();
    case MenuSource::Case::Shortcuts:
        return firstThemeIcon({"system-run", "utilities-terminal", "application-x-executable"});
    case MenuSource::Case::Recents:
        return firstThemeIcon({"document-open-recent", "document-open-recent-symbolic", "folder-recent"});
    case MenuSource::Case::CustomMenu: {
        const auto menu = m_context.store.menu(*source.uuid());
        return menu ? customMenuIcon(menu->symbol, menu->color) : QIcon();
    }
    case MenuSource::Case::Folder: {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder ? iconForFile(normalizedURL(folder->url).toLocalFile()) : QIcon();
    }
    case MenuSource::Case::ShortcutFolder:
        return firstThemeIcon({"folder"});
    case MenuSource::Case::Shortcut:
    case MenuSource::Case::Separator:
        return {};
    }
    return {};
}

bool MenuBuilder::isAvailable(const MenuSource &source) const
{
    switch (source.kind()) {
    case MenuSource::Case::CustomMenu:
        return m_context.store.menu(*source.uuid()).has_value();
    case MenuSource::Case::Folder: {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder && QFileInfo(normalizedURL(folder->url).toLocalFile()).isDir();
    }
    case MenuSource::Case::ShortcutFolder:
        // Until the tool has answered once, give the folder the benefit of the doubt.
        return !m_context.shortcuts.hasLoaded() || m_context.shortcuts.folder(source.shortcutRef()->id).has_value();
    case MenuSource::Case::Shortcut:
        return !m_context.shortcuts.hasLoaded() || m_context.shortcuts.contains(source.shortcutRef()->id);
    default:
        return true;
    }
}

QIcon MenuBuilder::customMenuIcon(const std::optional<QString> &symbol, const std::optional<FolderColor> &color)
{
    static QHash<QString, QIcon> cache;
    const QString key = symbol.value_or(QString()) + QLatin1Char('|') + (color ? enumToString(*color) : QString());
    if (const auto hit = cache.constFind(key); hit != cache.constEnd())
        return *hit;
    QIcon base = symbol ? iconForName(*symbol) : QIcon();
    if (base.isNull())
        base = firstThemeIcon({"folder-symbolic", "folder"});
    QIcon tinted;
    for (const qreal scale : {1.0, 2.0}) {
        QImage image = base.pixmap(QSize(menuIconSize, menuIconSize) * scale).toImage().convertToFormat(
            QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), tint(color.value_or(FolderColor::Blue)));
        painter.end();
        QPixmap pixmap = QPixmap::fromImage(image);
        pixmap.setDevicePixelRatio(scale);
        tinted.addPixmap(pixmap);
    }
    cache.insert(key, tinted);
    return tinted;
}

QIcon MenuBuilder::iconFor(const ResultIcon &icon)
{
    if (const auto *file = std::get_if<FileIcon>(&icon))
        return iconForFile(file->path);
    if (const auto *named = std::get_if<NamedIcon>(&icon))
        return iconForName(named->name);
    return PaneIcon::image(std::get<CatalogIcon>(icon).description);
}

QAction *MenuBuilder::addOpenableItem(QMenu *menu, const QString &title, const QUrl &url, const QIcon &icon)
{
    QAction *action = menu->addAction(menuSizeIcon(icon), menuTitle(title));
    action->setData(url);
    QObject::connect(action, &QAction::triggered, menu, [open = m_open, url] { open(url); });
    return action;
}

QMenu *MenuBuilder::addSubmenu(QMenu *menu, const QString &title, const QIcon &icon, std::function<void(QMenu *)> fill)
{
    auto *submenu = new LazyMenu(std::move(fill), emptyTitle(), menu);
    submenu->setTitle(menuTitle(title));
    submenu->setIcon(menuSizeIcon(icon));
    menu->addMenu(submenu);
    return submenu;
}

QAction *MenuBuilder::addSourceItem(QMenu *menu, const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (const auto ref = source.shortcutRef(); ref && source.kind() == MenuSource::Case::Shortcut)
        return addOpenableItem(menu, ref->name, shortcutURL(ref->id));
    QMenu *submenu = addSubmenu(menu, title(source), icon(source), [this, source](QMenu *m) { addItems(m, source); });
    return submenu->menuAction();
}

void MenuBuilder::addItems(QMenu *menu, const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    switch (source.kind()) {
    case MenuSource::Case::Applications:
        addApplications(menu);
        break;
    case MenuSource::Case::SystemSettings:
        addSystemSettings(menu);
        break;
    case MenuSource::Case::Shortcuts:
        addAllShortcuts(menu);
        break;
    case MenuSource::Case::Recents:
        addRecents(menu);
        break;
    case MenuSource::Case::CustomMenu:
        if (const auto custom = m_context.store.menu(*source.uuid()))
            addCustomMenu(menu, *custom);
        break;
    case MenuSource::Case::Folder:
        if (const auto folder = m_context.store.folder(*source.uuid()))
            addFolderItems(menu, folder->url, folder->sort);
        break;
    case MenuSource::Case::ShortcutFolder:
        if (const auto folder = m_context.shortcuts.folder(source.shortcutRef()->id))
            addShortcuts(menu, folder->shortcuts);
        break;
    case MenuSource::Case::Shortcut: {
        const auto ref = *source.shortcutRef();
        addOpenableItem(menu, ref.name, shortcutURL(ref.id));
        break;
    }
    case MenuSource::Case::Separator:
        menu->addSeparator();
        break;
    }
}

void MenuBuilder::addFolderItems(QMenu *menu, const QUrl &folder, FolderSort sort)
{
    for (const auto &entry : FolderListing::list(folder, sort)) {
        const QIcon icon = iconForFile(entry.url.toLocalFile());
        if (!entry.isFolder) {
            addOpenableItem(menu, entry.name, entry.url, icon);
            continue;
        }
        const QUrl url = entry.url;
        addSubmenu(menu, entry.name, icon, [this, url, sort](QMenu *m) { addFolderItems(m, url, sort); });
    }
}

void MenuBuilder::addAppEntries(QMenu *menu, const QList<AppEntry> &entries)
{
    for (const auto &entry : entries) {
        if (const App *app = entry.app()) {
            const QIcon icon = app->icon.isEmpty() ? iconForFile(app->url.toLocalFile()) : iconForName(app->icon);
            addOpenableItem(menu, app->name, app->url, icon);
        } else if (const AppFolder *folder = entry.folder()) {
            QIcon icon = iconForName(folder->icon);
            if (icon.isNull())
                icon = firstThemeIcon({"folder"});
            const QList<AppEntry> children = folder->entries;
            addSubmenu(menu, folder->name, icon, [this, children](QMenu *m) { addAppEntries(m, children); });
        }
    }
}

void MenuBuilder::addApplications(QMenu *menu)
{
    const QList<AppEntry> tree = AppLibrary::scan();
    if (!m_context.store.showsOnlyFavoriteApps()) {
        addAppEntries(menu, tree);
        return;
    }
    // Only the favourites, flat, in the order of the tree.
    QList<AppEntry> favourites;
    for (const auto &app : AppLibrary::apps(tree)) {
        if (m_context.store.isFavorite(app.url))
            favourites.append(app);
    }
    addAppEntries(menu, favourites);
}

void MenuBuilder::addShortcuts(QMenu *menu, const QList<ShortcutRef> &shortcuts)
{
    for (const auto &shortcut : shortcuts)
        addOpenableItem(menu, shortcut.name, shortcutURL(shortcut.id));
}

void MenuBuilder::addAllShortcuts(QMenu *menu)
{
    // Folders keep their shortcuts together, as the tool files them.
    const auto &snapshot = m_context.shortcuts.snapshot();
    for (const auto &folder : snapshot.folders) {
        const QList<ShortcutRef> shortcuts = folder.shortcuts;
        addSubmenu(menu, folder.ref.name, firstThemeIcon({"folder"}),
                   [this, shortcuts](QMenu *m) { addShortcuts(m, shortcuts); });
    }
    if (!snapshot.folders.isEmpty() && !snapshot.unfiled.isEmpty())
        menu->addSeparator();
    addShortcuts(menu, snapshot.unfiled);
}

std::optional<SearchResult> MenuBuilder::describe(const QUrl &url) const
{
    return describeItem(url, &m_context.shortcuts, &m_context.destinations, m_context.strings);
}

void MenuBuilder::addRecents(QMenu *menu)
{
    const auto &recents = m_context.store.recents();
    const int shown = std::clamp(m_context.store.recentsLimit(), 0, int(recents.size()));
    for (int i = 0; i < shown; ++i) {
        const QUrl &url = recents.at(i);
        // A file that is gone stays listed, disabled; an address nothing
        // describes any more (a deleted shortcut) is left out.
        if (url.isLocalFile() && !QFileInfo::exists(normalizedURL(url).toLocalFile())) {
            addOpenableItem(menu, folderTitle(url), url)->setEnabled(false);
            continue;
        }
        const auto described = describe(url);
        if (!described) {
            if (!isShortcutRunURL(url) && !isSettingsURL(url))
                addOpenableItem(menu, url.toDisplayString(), url);
            continue;
        }
        addOpenableItem(menu, described->title, url, described->icon ? iconFor(*described->icon) : QIcon());
    }
    if (menu->actions().isEmpty())
        return;
    menu->addSeparator();
    QAction *clear = menu->addAction(menuTitle(m_context.strings.text(SystemString::ClearMenu)));
    QObject::connect(clear, &QAction::triggered, menu, [clearRecents = m_clearRecents] { clearRecents(); });
}

void MenuBuilder::addCustomMenu(QMenu *menu, const CustomMenu &custom)
{
    for (const auto kind : MenuStore::groupOrder(custom)) {
        const QList<QUrl> urls = MenuStore::urls(kind, custom);
        if (urls.isEmpty())
            continue;
        if (!menu->actions().isEmpty())
            menu->addSeparator();
        if (kind == MenuItemKind::Settings) {
            addNodes(menu, CustomMenuNode::tree(urls, m_context.catalog, m_context.destinations), {});
            continue;
        }
        for (const auto &url : urls) {
            const QString path = normalizedURL(url).toLocalFile();
            if (url.isLocalFile() && !QFileInfo::exists(path)) {
                addOpenableItem(menu, folderTitle(url), url)->setEnabled(false);
                continue;
            }
            const auto described = describe(url);
            if (!described)
                continue;
            const QIcon icon = described->icon ? iconFor(*described->icon) : QIcon();
            if (kind == MenuItemKind::Files && QFileInfo(path).isDir()) {
                addSubmenu(menu, described->title, icon,
                           [this, url](QMenu *m) { addFolderItems(m, url, FolderSort::Name); });
                continue;
            }
            addOpenableItem(menu, described->title, url, icon);
        }
    }
}

CustomMenuNode MenuBuilder::wholePane(const Pane &pane, int depth) const
{
    CustomMenuNode node{pane, true, pane.items(), {}};
    // Catalogs nest a few levels at most; the bound guards a cycle in one.
    if (depth < 8) {
        for (const auto &child : pane.childPanes(m_context.catalog))
            node.children.append(wholePane(child, depth + 1));
    }
    return node;
}

void MenuBuilder::addSystemSettings(QMenu *menu)
{
    const Catalog &catalog = m_context.catalog;
    for (const auto &section : catalog.sections) {
        QList<CustomMenuNode> nodes;
        for (const auto &id : section) {
            if (const auto pane = catalog.pane(id))
                nodes.append(wholePane(*pane, 0));
        }
        if (nodes.isEmpty())
            continue;
        if (!menu->actions().isEmpty())
            menu->addSeparator();
        addNodes(menu, nodes, {});
    }
}

void MenuBuilder::addNodes(QMenu *menu, const QList<CustomMenuNode> &nodes, const QList<Item> &parentItems)
{
    for (const auto &node : nodes)
        addNode(menu, node);
    if (!nodes.isEmpty() && !parentItems.isEmpty())
        menu->addSeparator();
    for (const auto &item : parentItems) {
        const QString suffix = item.kind == Kind::Sheet ? QStringLiteral("…") : QString();
        addOpenableItem(menu, m_context.strings.itemLabel(item) + suffix, item.url, PaneIcon::image(item.icon));
    }
}

void MenuBuilder::addNode(QMenu *menu, const CustomMenuNode &node)
{
    const QString name = m_context.strings.paneName(node.pane);
    const QIcon icon = PaneIcon::image(node.pane.icon);
    if (!node.isPicked) {
        // A pane shown only for what was picked inside it: its name heads
        // the picked places.
        menu->addSection(menuTitle(name));
        addNodes(menu, node.children, node.items);
        return;
    }
    if (node.children.isEmpty() && node.items.isEmpty()) {
        addOpenableItem(menu, name, node.pane.url, icon);
        return;
    }
    addSubmenu(menu, name, icon, [this, node, name, icon](QMenu *m) {
        addOpenableItem(m, name, node.pane.url, icon);
        m->addSeparator();
        addNodes(m, node.children, node.items);
    });
}
