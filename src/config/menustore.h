#pragma once

#include "config/layout.h"

#include <QObject>

#include <functional>
#include <optional>

class Preferences;

// The one owner of the user's menu configuration and recent items. Loads from
// the preferences at construction, derives the effective layout, and writes
// every change back before the editing call returns. Main thread only.
class MenuStore : public QObject
{
    Q_OBJECT

public:
    static constexpr int maximumRecents = 10;
    static constexpr int defaultRecentsLimit = 5;

    explicit MenuStore(Preferences &preferences, QObject *parent = nullptr);

    const QList<CustomMenu> &menus() const { return m_menus; }
    const QList<FolderSource> &folders() const { return m_folders; }
    const QList<MenuSource> &shortcutSources() const { return m_shortcutSources; }
    const QList<QUuid> &separators() const { return m_separators; }
    const std::optional<QList<LayoutEntry>> &savedLayout() const { return m_savedLayout; }
    const QList<QUrl> &favoriteApps() const { return m_favoriteApps; }
    bool showsOnlyFavoriteApps() const { return m_showsOnlyFavoriteApps; }
    int recentsLimit() const { return m_recentsLimit; }
    const QList<QUrl> &recents() const { return m_recents; }
    const QList<LayoutEntry> &layout() const { return m_layout; }

    std::optional<CustomMenu> menu(const QUuid &id) const;
    std::optional<FolderSource> folder(const QUuid &id) const;
    // A source missing from the layout counts as hidden.
    SourceStyle style(const MenuSource &source) const;
    bool isFavorite(const QUrl &url) const;
    bool contains(const QUrl &url, const QUuid &menuId) const;
    static QList<QUrl> urls(MenuItemKind kind, const CustomMenu &menu);
    // The menu's stored group order completed with the kinds it lacks.
    static QList<MenuItemKind> groupOrder(const CustomMenu &menu);

    CustomMenu addMenu(const QString &name);
    std::optional<CustomMenu> duplicateMenu(const QUuid &id, const QString &name);
    void removeMenu(const QUuid &id);
    void renameMenu(const QUuid &id, const QString &name);
    void setSymbol(const QUuid &id, const std::optional<QString> &symbol);
    void setColor(const QUuid &id, const std::optional<FolderColor> &color);
    void updateMenu(const QUuid &id, const std::function<void(CustomMenu &)> &change);
    void setIncluded(bool included, const QUrl &url, const QUuid &menuId);
    void moveSettings(const QUuid &menuId, const QList<int> &sourceOffsets, int destinationOffset);
    void moveGroups(const QUuid &menuId, const QList<MenuItemKind> &visibleOrder, const QList<int> &sourceOffsets,
                    int destinationOffset);

    void addFolder(const QUrl &folderUrl);
    void setSort(FolderSort sort, const QUuid &folderId);
    void addShortcutSource(const MenuSource &source);
    void addSeparator();
    void remove(const MenuSource &source);

    void setStyle(SourceStyle style, const MenuSource &source);
    void move(const QList<MenuSource> &sources, const std::optional<MenuSource> &before);

    void setFavorite(bool favorite, const QUrl &url);
    void setShowsOnlyFavoriteApps(bool value);
    void setRecentsLimit(int limit);
    void recordRecent(const QUrl &url);
    void setRecents(const QList<QUrl> &recents);

Q_SIGNALS:
    void menusChanged();
    void foldersChanged();
    void shortcutSourcesChanged();
    void separatorsChanged();
    void savedLayoutChanged();
    void favoriteAppsChanged();
    void showsOnlyFavoriteAppsChanged();
    void recentsLimitChanged();
    void recentsChanged();
    void layoutChanged();

private:
    void load();
    void deriveLayout();
    void reindex();
    void save();
    void setMenus(QList<CustomMenu> menus);
    void setSavedLayout(QList<LayoutEntry> layout);

    Preferences &m_preferences;
    QList<CustomMenu> m_menus;
    QList<FolderSource> m_folders;
    QList<MenuSource> m_shortcutSources;
    QList<QUuid> m_separators;
    std::optional<QList<LayoutEntry>> m_savedLayout;
    QList<QUrl> m_favoriteApps;
    bool m_showsOnlyFavoriteApps = false;
    int m_recentsLimit = defaultRecentsLimit;
    QList<QUrl> m_recents;
    QList<LayoutEntry> m_layout;
    QHash<QUuid, qsizetype> m_menuIndex;
    QHash<QUuid, qsizetype> m_folderIndex;
};

// Moves the elements at the given offsets, in their order, to stand before the
// element that was at the destination offset (the end when it equals the size).
template<typename T>
QList<T> movedList(const QList<T> &list, const QList<int> &sourceOffsets, int destinationOffset)
{
    QList<int> offsets;
    for (const int offset : sourceOffsets) {
        if (offset >= 0 && offset < list.size() && !offsets.contains(offset))
            offsets.append(offset);
    }
    std::sort(offsets.begin(), offsets.end());
    destinationOffset = std::clamp(destinationOffset, 0, int(list.size()));
    QList<T> moved;
    QList<T> rest;
    int insertAt = destinationOffset;
    for (int i = 0; i < list.size(); ++i) {
        if (offsets.contains(i)) {
            moved.append(list.at(i));
            if (i < destinationOffset)
                --insertAt;
        } else {
            rest.append(list.at(i));
        }
    }
    for (qsizetype i = 0; i < moved.size(); ++i)
        rest.insert(insertAt + i, moved.at(i));
    return rest;
}
