#pragma once

#include "common/enumstrings.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>
#include <variant>

// The vocabulary of the user's menu configuration: which sources the menu
// shows, how, and the user's own menus and folders. Plain values only.

enum class SourceStyle { Inline, Submenu, Hidden };
enum class MenuItemKind { Apps, Files, Shortcuts, Settings };
enum class FolderColor { Blue, Purple, Pink, Red, Orange, Yellow, Green, Graphite };
enum class FolderSort { Name, DateAdded, DateModified };

template<>
struct EnumCases<SourceStyle> {
    static constexpr std::array<std::pair<SourceStyle, const char *>, 3> cases{{
        {SourceStyle::Inline, "inline"},
        {SourceStyle::Submenu, "submenu"},
        {SourceStyle::Hidden, "hidden"},
    }};
};

template<>
struct EnumCases<MenuItemKind> {
    static constexpr std::array<std::pair<MenuItemKind, const char *>, 4> cases{{
        {MenuItemKind::Apps, "apps"},
        {MenuItemKind::Files, "files"},
        {MenuItemKind::Shortcuts, "shortcuts"},
        {MenuItemKind::Settings, "settings"},
    }};
};

template<>
struct EnumCases<FolderColor> {
    static constexpr std::array<std::pair<FolderColor, const char *>, 8> cases{{
        {FolderColor::Blue, "blue"},
        {FolderColor::Purple, "purple"},
        {FolderColor::Pink, "pink"},
        {FolderColor::Red, "red"},
        {FolderColor::Orange, "orange"},
        {FolderColor::Yellow, "yellow"},
        {FolderColor::Green, "green"},
        {FolderColor::Graphite, "graphite"},
    }};
};

template<>
struct EnumCases<FolderSort> {
    static constexpr std::array<std::pair<FolderSort, const char *>, 3> cases{{
        {FolderSort::Name, "name"},
        {FolderSort::DateAdded, "dateAdded"},
        {FolderSort::DateModified, "dateModified"},
    }};
};

// One shortcut or shortcut folder, as the shortcuts tool names it.
struct ShortcutRef {
    QString id;
    QString name;
    bool operator==(const ShortcutRef &) const = default;
};

size_t qHash(const ShortcutRef &ref, size_t seed = 0) noexcept;

// One source of status-menu items. The case decides which payload it carries.
class MenuSource
{
public:
    enum class Case {
        SystemSettings,
        CustomMenu,
        Applications,
        Folder,
        Shortcuts,
        ShortcutFolder,
        Shortcut,
        Recents,
        Separator,
    };

    // A default-made source is the applications source, so records holding a
    // source can be default-constructed.
    MenuSource()
        : MenuSource(Case::Applications, {})
    {
    }

    static MenuSource systemSettings() { return MenuSource(Case::SystemSettings, {}); }
    static MenuSource customMenu(const QUuid &id) { return MenuSource(Case::CustomMenu, id); }
    static MenuSource applications() { return MenuSource(Case::Applications, {}); }
    static MenuSource folder(const QUuid &id) { return MenuSource(Case::Folder, id); }
    static MenuSource shortcuts() { return MenuSource(Case::Shortcuts, {}); }
    static MenuSource shortcutFolder(const ShortcutRef &ref) { return MenuSource(Case::ShortcutFolder, ref); }
    static MenuSource shortcut(const ShortcutRef &ref) { return MenuSource(Case::Shortcut, ref); }
    static MenuSource recents() { return MenuSource(Case::Recents, {}); }
    static MenuSource separator(const QUuid &id) { return MenuSource(Case::Separator, id); }

    Case kind() const { return m_case; }
    // The UUID of a customMenu, folder or separator source.
    std::optional<QUuid> uuid() const;
    // The shortcut of a shortcut or shortcutFolder source.
    std::optional<ShortcutRef> shortcutRef() const;

    bool operator==(const MenuSource &) const = default;

private:
    using Payload = std::variant<std::monostate, QUuid, ShortcutRef>;
    MenuSource(Case c, Payload payload)
        : m_case(c)
        , m_payload(std::move(payload))
    {
    }

    Case m_case;
    Payload m_payload;
};

size_t qHash(const MenuSource &source, size_t seed = 0) noexcept;

template<>
struct EnumCases<MenuSource::Case> {
    static constexpr std::array<std::pair<MenuSource::Case, const char *>, 9> cases{{
        {MenuSource::Case::SystemSettings, "systemSettings"},
        {MenuSource::Case::CustomMenu, "customMenu"},
        {MenuSource::Case::Applications, "applications"},
        {MenuSource::Case::Folder, "folder"},
        {MenuSource::Case::Shortcuts, "shortcuts"},
        {MenuSource::Case::ShortcutFolder, "shortcutFolder"},
        {MenuSource::Case::Shortcut, "shortcut"},
        {MenuSource::Case::Recents, "recents"},
        {MenuSource::Case::Separator, "separator"},
    }};
};

struct LayoutEntry {
    MenuSource source;
    SourceStyle style = SourceStyle::Submenu;
    bool operator==(const LayoutEntry &) const = default;
};

size_t qHash(const LayoutEntry &entry, size_t seed = 0) noexcept;

struct CustomMenu {
    QUuid id;
    QString name;
    QList<QUrl> urls;
    std::optional<QList<MenuItemKind>> groupOrder;
    std::optional<QString> symbol;
    std::optional<FolderColor> color;
    bool operator==(const CustomMenu &) const = default;
};

size_t qHash(const CustomMenu &menu, size_t seed = 0) noexcept;

struct FolderSource {
    QUuid id;
    QUrl url;
    FolderSort sort = FolderSort::Name;
    bool operator==(const FolderSource &) const = default;
};

size_t qHash(const FolderSource &folder, size_t seed = 0) noexcept;

// What a drag of a layout row in the settings window carries.
struct DraggedSource {
    MenuSource source;
    bool operator==(const DraggedSource &) const = default;

    static constexpr const char *mimeType = "application/x-quillon-menu-source";
};

size_t qHash(const DraggedSource &dragged, size_t seed = 0) noexcept;
