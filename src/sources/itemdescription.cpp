#include "sources/itemdescription.h"

#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "config/urls.h"
#include "sources/desktopentryfile.h"
#include "sources/shortcutlibrary.h"
#include "sources/sourcetitles.h"

#include <QFileInfo>

namespace {
// What stands for the shortcuts tool where a shortcut needs an icon.
const QString shortcutIconName = QStringLiteral("system-run");
} // namespace

QString placeTitle(SystemStrings &strings, const Pane &pane, const std::optional<Item> &item)
{
    const QString paneName = strings.paneName(pane);
    if (!item)
        return paneName;
    return paneName + QStringLiteral(" › ") + strings.itemLabel(*item)
           + (item->kind == Kind::Sheet ? QStringLiteral("…") : QString());
}

std::optional<SearchResult> describeItem(const QUrl &url, const ShortcutLibrary *shortcuts,
                                         const QHash<QUrl, Destination> *destinations, SystemStrings &strings)
{
    if (const auto id = shortcutID(url)) {
        if (!shortcuts)
            return std::nullopt;
        for (const auto &shortcut : shortcuts->allShortcuts()) {
            if (shortcut.id == *id)
                return SearchResult{shortcut.name, url, NamedIcon{shortcutIconName}};
        }
        return std::nullopt;
    }
    if (destinations) {
        if (const auto found = destinations->constFind(url); found != destinations->constEnd()) {
            const IconSpec &icon = found->item ? found->item->icon : found->pane.icon;
            return SearchResult{placeTitle(strings, found->pane, found->item), url, CatalogIcon{icon}};
        }
    }
    if (url.isLocalFile()) {
        const QString path = normalizedURL(url).toLocalFile();
        if (!QFileInfo::exists(path))
            return std::nullopt;
        QString title = folderTitle(url);
        // An application is known by its name, not its file's.
        if (kindOf(url) == MenuItemKind::Apps) {
            if (const auto entry = DesktopEntryFile::load(QFile::encodeName(path))) {
                if (const auto name = entry->localeString("Name"); name && !name->isEmpty())
                    title = *name;
            }
        }
        return SearchResult{title, url, FileIcon{path}};
    }
    return std::nullopt;
}
