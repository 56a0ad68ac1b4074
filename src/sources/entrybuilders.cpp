#include "sources/entrybuilders.h"

#include "catalog/systemstrings.h"
#include "config/urls.h"
#include "sources/contentsources.h"

#include <QCoreApplication>

namespace {

void appendNode(MenuEntries &entries, const SourceContext &context, const CustomMenuNode &node);

} // namespace

ItemIcon folderIcon()
{
    return ThemeIcon{{QStringLiteral("folder")}};
}

ItemIcon unavailableIcon()
{
    return ThemeIcon{{QStringLiteral("dialog-warning"), QStringLiteral("emblem-important")}};
}

MenuEntries folderEntries(const SourceContext &context, const QUrl &folder, FolderSort sort)
{
    const FolderPage page = context.listFolder(folder, sort);
    MenuEntries entries;
    for (const auto &entry : page.entries) {
        const ItemIcon icon = FileIcon{entry.url.toLocalFile()};
        if (!entry.isFolder) {
            entries.append(OpenableEntry{entry.name, entry.url, icon});
            continue;
        }
        entries.append(SubmenuEntry{
            entry.name, icon, [&context, url = entry.url, sort] { return folderEntries(context, url, sort); }, true});
    }
    if (page.more() > 0)
        entries.append(leftOutEntries(folder, page.more()));
    return entries;
}

MenuEntries leftOutEntries(const QUrl &folder, qsizetype count)
{
    return {SeparatorEntry{},
            OpenableEntry{QCoreApplication::translate("FolderEntries", "%Ln more items", nullptr, int(count)), folder,
                          std::nullopt, false},
            OpenableEntry{QCoreApplication::translate("FolderEntries", "Open Folder"), folder, folderIcon()}};
}

MenuEntries appEntries(const QList<AppEntry> &entries)
{
    MenuEntries result;
    for (const auto &entry : entries) {
        if (const App *app = entry.app()) {
            const ItemIcon icon =
                app->icon.isEmpty() ? ItemIcon(FileIcon{app->url.toLocalFile()}) : ItemIcon(NamedIcon{app->icon});
            result.append(OpenableEntry{app->name, app->url, icon});
        } else if (const AppFolder *folder = entry.folder()) {
            result.append(SubmenuEntry{folder->name, ThemeIcon{{folder->icon, QStringLiteral("folder")}},
                                       [children = folder->entries] { return appEntries(children); }});
        }
    }
    return result;
}

MenuEntries shortcutEntries(const QList<ShortcutRef> &shortcuts)
{
    MenuEntries entries;
    for (const auto &shortcut : shortcuts)
        entries.append(OpenableEntry{shortcut.name, shortcutURL(shortcut.id), std::nullopt});
    return entries;
}

MenuEntries settingsEntries(const SourceContext &context, const QList<CustomMenuNode> &nodes,
                            const QList<Item> &parentItems)
{
    MenuEntries entries;
    for (const auto &node : nodes)
        appendNode(entries, context, node);
    if (!nodes.isEmpty() && !parentItems.isEmpty())
        entries.append(SeparatorEntry{});
    for (const auto &item : parentItems) {
        const QString suffix = item.kind == Kind::Sheet ? QStringLiteral("…") : QString();
        entries.append(OpenableEntry{context.strings.itemLabel(item) + suffix, item.url, CatalogIcon{item.icon}});
    }
    return entries;
}

namespace {

void appendNode(MenuEntries &entries, const SourceContext &context, const CustomMenuNode &node)
{
    const QString name = context.strings.paneName(node.pane);
    const ItemIcon icon = CatalogIcon{node.pane.icon};
    if (!node.isPicked) {
        entries.append(SectionEntry{name});
        entries.append(settingsEntries(context, node.children, node.items));
        return;
    }
    if (node.children.isEmpty() && node.items.isEmpty()) {
        if (!node.pane.url.isEmpty())
            entries.append(OpenableEntry{name, node.pane.url, icon});
        return;
    }
    entries.append(SubmenuEntry{name, icon, [&context, node, name, icon] {
                                    // A group that opens nothing itself is only a heading.
                                    MenuEntries inner;
                                    if (!node.pane.url.isEmpty())
                                        inner = {OpenableEntry{name, node.pane.url, icon}, SeparatorEntry{}};
                                    inner.append(settingsEntries(context, node.children, node.items));
                                    return inner;
                                }});
}

} // namespace
