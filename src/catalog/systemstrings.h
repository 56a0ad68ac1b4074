#pragma once

#include "catalog/catalog.h"
#include "catalog/stringtable.h"
#include "common/enumstrings.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QTranslator>

#include <memory>
#include <optional>

// The program's fixed interface texts. Each is borrowed from the desktop's
// own string tables where the catalog says where to find it, and otherwise
// shown in English, or in the program's own translation of the English.
enum class SystemString {
    QuitApp,
    Settings,
    SystemSettings,
    OpenAtLogin,
    General,
    Menus,
    Search,
    Add,
    Delete,
    Duplicate,
    Remove,
    Untitled,
    CopyOf,
    Name,
    NoSelection,
    NoItems,
    NotAvailable,
    ShowSearch,
    CheckForUpdates,
    UpdateAvailable,
    AutomaticUpdates,
    DontShow,
    Menu,
    Submenu,
    AddFolder,
    SortBy,
    DateAdded,
    DateModified,
    Options,
    AddShortcut,
    ItemUnavailable,
    Show,
    AllApplications,
    Favorites,
    KeyboardShortcut,
    NoShortcut,
    PressKeys,
    RemoveShortcut,
    Space,
    About,
    SendFeedback,
    Recents,
    ClearMenu,
    NumberOfItems,
    Separator,
    FilesAndFolders,
    Catalog,
    LabelFormat,
    DeleteConfirmation,
    CantUndo,
    Content,
    ShortcutInUse,
    Other,
    Icon,
    None,
    Blue,
    Purple,
    Pink,
    Red,
    Orange,
    Yellow,
    Green,
    Graphite,
};

// The key of each case, under which the catalog's strings map names its source.
template<>
struct EnumCases<SystemString> {
    static constexpr std::array<std::pair<SystemString, const char *>, 63> cases{{
        {SystemString::QuitApp, "quitApp"},
        {SystemString::Settings, "settings"},
        {SystemString::SystemSettings, "systemSettings"},
        {SystemString::OpenAtLogin, "openAtLogin"},
        {SystemString::General, "general"},
        {SystemString::Menus, "menus"},
        {SystemString::Search, "search"},
        {SystemString::Add, "add"},
        {SystemString::Delete, "delete"},
        {SystemString::Duplicate, "duplicate"},
        {SystemString::Remove, "remove"},
        {SystemString::Untitled, "untitled"},
        {SystemString::CopyOf, "copyOf"},
        {SystemString::Name, "name"},
        {SystemString::NoSelection, "noSelection"},
        {SystemString::NoItems, "noItems"},
        {SystemString::NotAvailable, "notAvailable"},
        {SystemString::ShowSearch, "showSearch"},
        {SystemString::CheckForUpdates, "checkForUpdates"},
        {SystemString::UpdateAvailable, "updateAvailable"},
        {SystemString::AutomaticUpdates, "automaticUpdates"},
        {SystemString::DontShow, "dontShow"},
        {SystemString::Menu, "menu"},
        {SystemString::Submenu, "submenu"},
        {SystemString::AddFolder, "addFolder"},
        {SystemString::SortBy, "sortBy"},
        {SystemString::DateAdded, "dateAdded"},
        {SystemString::DateModified, "dateModified"},
        {SystemString::Options, "options"},
        {SystemString::AddShortcut, "addShortcut"},
        {SystemString::ItemUnavailable, "itemUnavailable"},
        {SystemString::Show, "show"},
        {SystemString::AllApplications, "allApplications"},
        {SystemString::Favorites, "favorites"},
        {SystemString::KeyboardShortcut, "keyboardShortcut"},
        {SystemString::NoShortcut, "noShortcut"},
        {SystemString::PressKeys, "pressKeys"},
        {SystemString::RemoveShortcut, "removeShortcut"},
        {SystemString::Space, "space"},
        {SystemString::About, "about"},
        {SystemString::SendFeedback, "sendFeedback"},
        {SystemString::Recents, "recents"},
        {SystemString::ClearMenu, "clearMenu"},
        {SystemString::NumberOfItems, "numberOfItems"},
        {SystemString::Separator, "separator"},
        {SystemString::FilesAndFolders, "filesAndFolders"},
        {SystemString::Catalog, "catalog"},
        {SystemString::LabelFormat, "labelFormat"},
        {SystemString::DeleteConfirmation, "deleteConfirmation"},
        {SystemString::CantUndo, "cantUndo"},
        {SystemString::Content, "content"},
        {SystemString::ShortcutInUse, "shortcutInUse"},
        {SystemString::Other, "other"},
        {SystemString::Icon, "icon"},
        {SystemString::None, "none"},
        {SystemString::Blue, "blue"},
        {SystemString::Purple, "purple"},
        {SystemString::Pink, "pink"},
        {SystemString::Red, "red"},
        {SystemString::Orange, "orange"},
        {SystemString::Yellow, "yellow"},
        {SystemString::Green, "green"},
        {SystemString::Graphite, "graphite"},
    }};
};

// The English text of a case; "%@" marks where callers put a name.
QString englishText(SystemString string);

// The user's full name from the account database, else the login name.
QString fullUserName();

// Display texts of the catalog and the interface. Main-thread state: the
// string tables are loaded on first use and kept.
class SystemStrings
{
public:
    using StringsMap = QMap<QString, std::optional<StringRef>>;

    // strings: where each interface string is found; languages: the user's,
    // most preferred first.
    SystemStrings(std::optional<StringsMap> strings, const QStringList &languages);
    SystemStrings(const SystemStrings &) = delete;
    SystemStrings &operator=(const SystemStrings &) = delete;

    // The one instance, over the process's catalog and the user's languages.
    static SystemStrings &shared();

    std::optional<StringTable> table(const QString &path);
    // The referenced text without a trailing ellipsis, else the fallback in
    // the program's own translation.
    QString resolve(const QString &fallback, const std::optional<StringRef> &ref);

    QString text(SystemString string);
    QString paneName(const Pane &pane);
    std::optional<QString> sectionTitle(const ItemSection &section);
    // Each " › " level of the label with its own reference.
    QString itemLabel(const Item &item);

private:
    QString ownTranslation(const QString &english) const;

    std::optional<StringsMap> m_strings;
    StringTableCache m_tables;
    // Its own, rather than the application's, so that an instance serves
    // exactly the languages it was made for.
    std::unique_ptr<QTranslator> m_translator;
};
