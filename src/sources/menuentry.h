#pragma once

#include "sources/itemicon.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>
#include <variant>

struct MenuEntry;
using MenuEntries = QList<MenuEntry>;

// What a source contributes to a menu, as plain descriptions: the status
// menu draws them as menu items, a tray host's exported menu as its own.

// An item that opens its URL when chosen. A file that is gone stays listed,
// disabled.
struct OpenableEntry {
    QString title;
    QUrl url;
    std::optional<ItemIcon> icon;
    bool enabled = true;
};

// A submenu, filled when it is first shown.
struct SubmenuEntry {
    QString title;
    std::optional<ItemIcon> icon;
    std::function<MenuEntries()> fill;
    // fill reads folders: it may take long, and is safe on a worker thread.
    bool fillsOffThread = false;
};

// A heading over the items that follow it.
struct SectionEntry {
    QString title;
};

// A line between groups. Never drawn at the top of a menu, so a source can
// set its first group apart from whatever precedes it.
struct SeparatorEntry { };

// An item that acts on Quillon itself ("Clear Menu").
struct CommandEntry {
    QString title;
    std::function<void()> run;
};

struct MenuEntry : std::variant<OpenableEntry, SubmenuEntry, SectionEntry, SeparatorEntry, CommandEntry> {
    using variant::variant;
};
