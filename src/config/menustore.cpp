#include "config/menustore.h"

#include "common/mainthread.h"
#include "config/menustate.h"
#include "config/preferences.h"
#include "config/urls.h"

namespace {

const QString menuStateKey = QStringLiteral("MenuState");
const QString recentsKey = QStringLiteral("Recents");

SourceStyle defaultStyle(const MenuSource &source)
{
    switch (source.kind()) {
    case MenuSource::Case::Shortcut:
    case MenuSource::Case::Separator:
        return SourceStyle::Inline;
    default:
        return SourceStyle::Submenu;
    }
}

QByteArray storedBytes(const QVariant &value)
{
    // Written as UTF-8 text; a hand-edited file may hold either form.
    if (value.typeId() == QMetaType::QByteArray)
        return value.toByteArray();
    return value.toString().toUtf8();
}

} // namespace

MenuStore::MenuStore(Preferences &preferences, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
{
    QUILLON_ASSERT_MAIN_THREAD();
    load();
}

void MenuStore::load()
{
    // Anything unreadable starts from defaults, silently: the next save
    // replaces it.
    const QVariant stored = m_preferences.value(menuStateKey);
    MenuState state;
    if (stored.isValid()) {
        if (auto decoded = decodeMenuState(storedBytes(stored)))
            state = std::move(decoded).value();
    }
    m_menus = state.menus.value_or(QList<CustomMenu>());
    m_folders = state.folders.value_or(QList<FolderSource>());
    m_shortcutSources = state.shortcuts.value_or(QList<MenuSource>());
    m_separators = state.separators.value_or(QList<QUuid>());
    m_favoriteApps = state.favoriteApps.value_or(QList<QUrl>());
    m_savedLayout = state.layout;
    m_showsOnlyFavoriteApps = state.showsOnlyFavoriteApps.value_or(false);
    m_recentsLimit = state.recentsLimit.value_or(defaultRecentsLimit);
    reindex();

    const QVariant storedRecents = m_preferences.value(recentsKey);
    const QStringList strings = storedRecents.typeId() == QMetaType::QString ? QStringList{storedRecents.toString()}
                                                                             : storedRecents.toStringList();
    for (const QString &string : strings) {
        const QUrl url(string, QUrl::StrictMode);
        if (!string.isEmpty() && url.isValid())
            m_recents.append(url);
    }
    deriveLayout();
}

void MenuStore::deriveLayout()
{
    QList<MenuSource> current{MenuSource::applications(), MenuSource::systemSettings(), MenuSource::shortcuts(),
                              MenuSource::recents()};
    for (const auto &menu : std::as_const(m_menus))
        current.append(MenuSource::customMenu(menu.id));
    for (const auto &folder : std::as_const(m_folders))
        current.append(MenuSource::folder(folder.id));
    current.append(m_shortcutSources);
    for (const auto &id : std::as_const(m_separators))
        current.append(MenuSource::separator(id));

    // Hashed, so a layout of many thousand entries derives in linear time.
    const QSet<MenuSource> existing(current.cbegin(), current.cend());
    QList<LayoutEntry> layout;
    layout.reserve(current.size());
    QSet<MenuSource> placed;
    placed.reserve(current.size());
    if (m_savedLayout) {
        for (const auto &entry : std::as_const(*m_savedLayout)) {
            if (existing.contains(entry.source)) {
                layout.append(entry);
                placed.insert(entry.source);
            }
        }
    }
    for (const auto &source : std::as_const(current)) {
        if (!placed.contains(source)) {
            layout.append({source, defaultStyle(source)});
            placed.insert(source);
        }
    }
    if (layout != m_layout) {
        m_layout = std::move(layout);
        Q_EMIT layoutChanged();
    }
}

void MenuStore::save()
{
    MenuState state;
    state.layout = m_savedLayout;
    state.menus = m_menus;
    state.folders = m_folders;
    state.shortcuts = m_shortcutSources;
    state.separators = m_separators;
    state.favoriteApps = m_favoriteApps;
    state.showsOnlyFavoriteApps = m_showsOnlyFavoriteApps;
    state.recentsLimit = m_recentsLimit;
    m_preferences.setValue(menuStateKey, QString::fromUtf8(encodeMenuState(state)));
}

std::optional<CustomMenu> MenuStore::menu(const QUuid &id) const
{
    const auto found = m_menuIndex.constFind(id);
    if (found == m_menuIndex.constEnd())
        return std::nullopt;
    return m_menus.at(*found);
}

std::optional<FolderSource> MenuStore::folder(const QUuid &id) const
{
    const auto found = m_folderIndex.constFind(id);
    if (found == m_folderIndex.constEnd())
        return std::nullopt;
    return m_folders.at(*found);
}

void MenuStore::reindex()
{
    // The menu asks for every custom menu and folder by id each time it
    // opens; with thousands of them a list search each time would be
    // quadratic. Filled from the back so the first of equal ids wins.
    m_menuIndex.clear();
    m_menuIndex.reserve(m_menus.size());
    for (qsizetype i = m_menus.size() - 1; i >= 0; --i)
        m_menuIndex.insert(m_menus.at(i).id, i);
    m_folderIndex.clear();
    m_folderIndex.reserve(m_folders.size());
    for (qsizetype i = m_folders.size() - 1; i >= 0; --i)
        m_folderIndex.insert(m_folders.at(i).id, i);
}

SourceStyle MenuStore::style(const MenuSource &source) const
{
    for (const auto &entry : m_layout) {
        if (entry.source == source)
            return entry.style;
    }
    return SourceStyle::Hidden;
}

bool MenuStore::isFavorite(const QUrl &url) const
{
    const QString path = comparablePath(url);
    return std::any_of(m_favoriteApps.cbegin(), m_favoriteApps.cend(),
                       [&](const QUrl &favorite) { return comparablePath(favorite) == path; });
}

bool MenuStore::contains(const QUrl &url, const QUuid &menuId) const
{
    const auto found = menu(menuId);
    return found && found->urls.contains(url);
}

QList<QUrl> MenuStore::urls(MenuItemKind kind, const CustomMenu &menu)
{
    QList<QUrl> result;
    for (const auto &url : menu.urls) {
        if (kindOf(url) == kind)
            result.append(url);
    }
    return result;
}

QList<MenuItemKind> MenuStore::groupOrder(const CustomMenu &menu)
{
    QList<MenuItemKind> order = menu.groupOrder.value_or(QList<MenuItemKind>());
    for (const auto kind : allCases<MenuItemKind>()) {
        if (!order.contains(kind))
            order.append(kind);
    }
    return order;
}

void MenuStore::setMenus(QList<CustomMenu> menus)
{
    m_menus = std::move(menus);
    reindex();
    Q_EMIT menusChanged();
    deriveLayout();
    save();
}

void MenuStore::setSavedLayout(QList<LayoutEntry> layout)
{
    m_savedLayout = std::move(layout);
    Q_EMIT savedLayoutChanged();
    deriveLayout();
    save();
}

CustomMenu MenuStore::addMenu(const QString &name)
{
    QUILLON_ASSERT_MAIN_THREAD();
    CustomMenu menu{QUuid::createUuid(), name, {}, std::nullopt, std::nullopt, std::nullopt};
    auto menus = m_menus;
    menus.append(menu);
    setMenus(std::move(menus));
    return menu;
}

std::optional<CustomMenu> MenuStore::duplicateMenu(const QUuid &id, const QString &name)
{
    QUILLON_ASSERT_MAIN_THREAD();
    auto copy = menu(id);
    if (!copy)
        return std::nullopt;
    copy->id = QUuid::createUuid();
    copy->name = name;
    auto menus = m_menus;
    menus.append(*copy);
    setMenus(std::move(menus));
    return copy;
}

void MenuStore::removeMenu(const QUuid &id)
{
    QUILLON_ASSERT_MAIN_THREAD();
    auto menus = m_menus;
    menus.removeIf([&](const CustomMenu &menu) { return menu.id == id; });
    setMenus(std::move(menus));
}

void MenuStore::renameMenu(const QUuid &id, const QString &name)
{
    updateMenu(id, [&](CustomMenu &menu) { menu.name = name; });
}

void MenuStore::setSymbol(const QUuid &id, const std::optional<QString> &symbol)
{
    updateMenu(id, [&](CustomMenu &menu) { menu.symbol = symbol; });
}

void MenuStore::setColor(const QUuid &id, const std::optional<FolderColor> &color)
{
    updateMenu(id, [&](CustomMenu &menu) { menu.color = color; });
}

void MenuStore::updateMenu(const QUuid &id, const std::function<void(CustomMenu &)> &change)
{
    QUILLON_ASSERT_MAIN_THREAD();
    auto menus = m_menus;
    const auto it = std::find_if(menus.begin(), menus.end(), [&](const CustomMenu &menu) { return menu.id == id; });
    if (it == menus.end())
        return;
    change(*it);
    setMenus(std::move(menus));
}

void MenuStore::setIncluded(bool included, const QUrl &url, const QUuid &menuId)
{
    const QUrl normalized = normalizedURL(url);
    updateMenu(menuId, [&](CustomMenu &menu) {
        menu.urls.removeAll(normalized);
        if (included)
            menu.urls.append(normalized);
    });
}

void MenuStore::moveSettings(const QUuid &menuId, const QList<int> &sourceOffsets, int destinationOffset)
{
    updateMenu(menuId, [&](CustomMenu &menu) {
        QList<QUrl> others;
        QList<QUrl> settings;
        for (const auto &url : std::as_const(menu.urls))
            (kindOf(url) == MenuItemKind::Settings ? settings : others).append(url);
        menu.urls = others + movedList(settings, sourceOffsets, destinationOffset);
    });
}

void MenuStore::moveGroups(const QUuid &menuId, const QList<MenuItemKind> &visibleOrder,
                           const QList<int> &sourceOffsets, int destinationOffset)
{
    updateMenu(menuId, [&](CustomMenu &menu) {
        auto order = movedList(visibleOrder, sourceOffsets, destinationOffset);
        for (const auto kind : groupOrder(menu)) {
            if (!order.contains(kind))
                order.append(kind);
        }
        menu.groupOrder = order;
    });
}

void MenuStore::addFolder(const QUrl &folderUrl)
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_folders.append({QUuid::createUuid(), folderUrl, FolderSort::Name});
    reindex();
    Q_EMIT foldersChanged();
    deriveLayout();
    save();
}

void MenuStore::setSort(FolderSort sort, const QUuid &folderId)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const auto it = std::find_if(m_folders.begin(), m_folders.end(),
                                 [&](const FolderSource &folder) { return folder.id == folderId; });
    if (it == m_folders.end())
        return;
    it->sort = sort;
    Q_EMIT foldersChanged();
    deriveLayout();
    save();
}

void MenuStore::addShortcutSource(const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (m_shortcutSources.contains(source))
        return;
    m_shortcutSources.append(source);
    Q_EMIT shortcutSourcesChanged();
    deriveLayout();
    save();
}

void MenuStore::addSeparator()
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_separators.append(QUuid::createUuid());
    Q_EMIT separatorsChanged();
    deriveLayout();
    save();
}

void MenuStore::remove(const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const auto id = source.uuid();
    if (source.kind() == MenuSource::Case::Separator && m_separators.removeAll(*id) > 0)
        Q_EMIT separatorsChanged();
    if (source.kind() == MenuSource::Case::Folder
        && m_folders.removeIf([&](const FolderSource &folder) { return folder.id == *id; }) > 0) {
        reindex();
        Q_EMIT foldersChanged();
    }
    if (m_shortcutSources.removeAll(source) > 0)
        Q_EMIT shortcutSourcesChanged();
    deriveLayout();
    save();
}

void MenuStore::setStyle(SourceStyle style, const MenuSource &source)
{
    QUILLON_ASSERT_MAIN_THREAD();
    auto layout = m_layout;
    const auto it =
        std::find_if(layout.begin(), layout.end(), [&](const LayoutEntry &entry) { return entry.source == source; });
    if (it == layout.end())
        return;
    it->style = style;
    setSavedLayout(std::move(layout));
}

void MenuStore::move(const QList<MenuSource> &sources, const std::optional<MenuSource> &before)
{
    QUILLON_ASSERT_MAIN_THREAD();
    QList<LayoutEntry> moved;
    QList<LayoutEntry> rest;
    for (const auto &entry : std::as_const(m_layout))
        (sources.contains(entry.source) ? moved : rest).append(entry);
    // In front of `before` among the remaining entries, else at the end.
    qsizetype insertAt = rest.size();
    for (qsizetype i = 0; before && i < rest.size(); ++i) {
        if (rest.at(i).source == *before) {
            insertAt = i;
            break;
        }
    }
    for (qsizetype i = 0; i < moved.size(); ++i)
        rest.insert(insertAt + i, moved.at(i));
    setSavedLayout(std::move(rest));
}

void MenuStore::setFavorite(bool favorite, const QUrl &url)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const QString path = comparablePath(url);
    m_favoriteApps.removeIf([&](const QUrl &existing) { return comparablePath(existing) == path; });
    if (favorite)
        m_favoriteApps.append(url);
    Q_EMIT favoriteAppsChanged();
    save();
}

void MenuStore::setShowsOnlyFavoriteApps(bool value)
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_showsOnlyFavoriteApps = value;
    Q_EMIT showsOnlyFavoriteAppsChanged();
    save();
}

void MenuStore::setRecentsLimit(int limit)
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_recentsLimit = limit;
    Q_EMIT recentsLimitChanged();
    save();
}

void MenuStore::recordRecent(const QUrl &url)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (style(MenuSource::recents()) == SourceStyle::Hidden)
        return;
    const QUrl normalized = normalizedURL(url);
    QList<QUrl> recents{normalized};
    for (const auto &recent : std::as_const(m_recents)) {
        if (recent != normalized && recents.size() < maximumRecents)
            recents.append(recent);
    }
    setRecents(recents);
}

void MenuStore::setRecents(const QList<QUrl> &recents)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const bool changed = recents != m_recents;
    m_recents = recents;
    QStringList strings;
    for (const auto &url : recents)
        strings.append(urlString(url));
    m_preferences.setValue(recentsKey, strings);
    if (changed)
        Q_EMIT recentsChanged();
}
