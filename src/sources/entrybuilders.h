#pragma once

#include "catalog/custommenunode.h"
#include "sources/applibrary.h"
#include "sources/menuentry.h"

struct SourceContext;

// Menu entries for the shapes of content that several sources share.

// A folder's contents; sub-folders are submenus listed when first shown.
// Reads only the folder, through the context's listing: safe on a worker.
MenuEntries folderEntries(const SourceContext &context, const QUrl &folder, FolderSort sort);
// What closes a folder's menu when it shows only part of the folder: how
// many items were left out, and the folder itself to open.
MenuEntries leftOutEntries(const QUrl &folder, qsizetype count);
// An application tree; its folders are submenus.
MenuEntries appEntries(const QList<AppEntry> &entries);
MenuEntries shortcutEntries(const QList<ShortcutRef> &shortcuts);
// Settings panes as the catalog nests them: a picked pane with more inside
// is a submenu that opens with the pane itself; a pane that is only there
// for what was picked inside it is a heading.
MenuEntries settingsEntries(const SourceContext &context, const QList<CustomMenuNode> &nodes,
                            const QList<Item> &parentItems);
// A folder's icon, as the menu shows folders.
ItemIcon folderIcon();
// The warning symbol of an item that is no longer there.
ItemIcon unavailableIcon();
