#include "config/menustore.h"
#include "config/urls.h"
#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
#include "sources/sourcetitles.h"

#include <QFileInfo>

namespace {

// A menu the user composed: its items grouped by kind, in the menu's group
// order, settings places in the catalog's tree.
class CustomMenuSource final : public ContentSource
{
public:
    CustomMenuSource(const SourceContext &context, const ContentSources &sources)
        : m_context(context)
        , m_sources(sources)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::CustomMenu; }
    QString title(const MenuSource &source) const override
    {
        const auto menu = m_context.store.menu(*source.uuid());
        return menu ? menu->name : QString();
    }
    std::optional<ItemIcon> icon(const MenuSource &source) const override
    {
        const auto menu = m_context.store.menu(*source.uuid());
        return menu ? std::optional<ItemIcon>(MenuSymbolIcon{menu->symbol, menu->color}) : std::nullopt;
    }
    bool isAvailable(const MenuSource &source) const override
    {
        return m_context.store.menu(*source.uuid()).has_value();
    }

    MenuEntries items(const MenuSource &source) const override
    {
        const auto custom = m_context.store.menu(*source.uuid());
        if (!custom)
            return {};
        MenuEntries entries;
        for (const auto kind : MenuStore::groupOrder(*custom)) {
            const QList<QUrl> urls = MenuStore::urls(kind, *custom);
            if (urls.isEmpty())
                continue;
            // Each group is set apart, from what stands before it too when
            // the menu is spread inline.
            entries.append(SeparatorEntry{});
            if (kind == MenuItemKind::Settings) {
                entries.append(settingsEntries(
                    m_context, CustomMenuNode::tree(urls, m_context.catalog, m_context.destinations), {}));
                appendUnknownPlaces(entries, urls);
                continue;
            }
            for (const auto &url : urls)
                appendItem(entries, kind, url);
        }
        return entries;
    }

    QSet<MenuItemKind> reachableKinds(const MenuSource &source) const override
    {
        QSet<MenuItemKind> kinds;
        if (const auto menu = m_context.store.menu(*source.uuid())) {
            for (const auto &url : menu->urls)
                kinds.insert(kindOf(url));
        }
        return kinds;
    }

private:
    // Places this desktop's settings program does not have (renamed or
    // removed since the user picked them) stay listed, unavailable, as a
    // missing file does; the store keeps them.
    void appendUnknownPlaces(MenuEntries &entries, const QList<QUrl> &urls) const
    {
        for (const auto &url : urls) {
            if (!m_context.destinations.contains(url))
                entries.append(OpenableEntry{folderTitle(url), url, unavailableIcon(), false});
        }
    }

    void appendItem(MenuEntries &entries, MenuItemKind kind, const QUrl &url) const
    {
        // One look at the disk per item, made only when this menu opens.
        const QFileInfo file(normalizedURL(url).toLocalFile());
        if (url.isLocalFile() && !file.exists()) {
            entries.append(OpenableEntry{folderTitle(url), url, std::nullopt, false});
            return;
        }
        const auto described = m_sources.describe(url);
        if (!described)
            return;
        if (kind == MenuItemKind::Files && url.isLocalFile() && file.isDir()) {
            entries.append(SubmenuEntry{
                described->title, described->icon,
                [&context = m_context, url] { return folderEntries(context, url, FolderSort::Name); }, true});
            return;
        }
        entries.append(OpenableEntry{described->title, url, described->icon});
    }

    const SourceContext &m_context;
    const ContentSources &m_sources;
};

} // namespace

std::unique_ptr<ContentSource> makeCustomMenuSource(const ContentSources &sources)
{
    return std::make_unique<CustomMenuSource>(sources.context(), sources);
}
