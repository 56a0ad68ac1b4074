#pragma once

#include "common/decoded.h"
#include "config/layout.h"

#include <QByteArray>

#include <optional>

// What the menu store persists under "MenuState". Every key is optional; a
// missing key or a null reads as not set.
struct MenuState {
    std::optional<QList<LayoutEntry>> layout;
    std::optional<QList<CustomMenu>> menus;
    std::optional<QList<FolderSource>> folders;
    std::optional<QList<MenuSource>> shortcuts;
    std::optional<QList<QUuid>> separators;
    std::optional<QList<QUrl>> favoriteApps;
    std::optional<bool> showsOnlyFavoriteApps;
    std::optional<int> recentsLimit;
    bool operator==(const MenuState &) const = default;
};

QByteArray encodeMenuState(const MenuState &state);
// All or nothing: one bad value anywhere fails the whole document.
Decoded<MenuState> decodeMenuState(const QByteArray &json);
