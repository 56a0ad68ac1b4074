#pragma once

#include "catalog/catalog.h"
#include "config/layout.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

// How an item's icon is found. Sources describe icons; only the code that
// draws menus and panels turns them into images, so sources need no display.
struct FileIcon {
    QString path; // the icon the file manager shows for this path
    bool operator==(const FileIcon &) const = default;
};
struct NamedIcon {
    QString name; // a theme icon name or an image path, as desktop entries give it
    bool operator==(const NamedIcon &) const = default;
};
struct CatalogIcon {
    IconSpec description;
    bool operator==(const CatalogIcon &) const = default;
};
// The first of these theme icons that the theme has.
struct ThemeIcon {
    QStringList names;
    bool operator==(const ThemeIcon &) const = default;
};
// The desktop's settings program.
struct SettingsAppIcon {
    bool operator==(const SettingsAppIcon &) const = default;
};
// A custom menu's symbol in its colour (a folder when it has none).
struct MenuSymbolIcon {
    std::optional<QString> symbol;
    std::optional<FolderColor> color;
    bool operator==(const MenuSymbolIcon &) const = default;
};

using ItemIcon = std::variant<FileIcon, NamedIcon, CatalogIcon, ThemeIcon, SettingsAppIcon, MenuSymbolIcon>;
