#include "catalog/systemstrings.h"
#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
#include "sources/itemdescription.h"
#include "sources/rankedresults.h"
#include "sources/textmatch.h"

namespace {

// The whole settings catalog: its sections, each pane with its pages.
class SystemSettingsSource final : public ContentSource
{
public:
    explicit SystemSettingsSource(const SourceContext &context)
        : m_context(context)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::SystemSettings; }
    QString title(const MenuSource &) const override { return m_context.strings.text(SystemString::SystemSettings); }
    std::optional<ItemIcon> icon(const MenuSource &) const override { return SettingsAppIcon{}; }

    MenuEntries items(const MenuSource &) const override
    {
        const Catalog &catalog = m_context.catalog;
        MenuEntries entries;
        for (const auto &section : catalog.sections) {
            QList<CustomMenuNode> nodes;
            for (const auto &id : section) {
                if (const auto pane = catalog.pane(id))
                    nodes.append(wholePane(*pane, 0));
            }
            if (nodes.isEmpty())
                continue;
            // Each section is set apart, from what stands before it too when
            // the catalog is spread inline.
            entries.append(SeparatorEntry{});
            entries.append(settingsEntries(m_context, nodes, {}));
        }
        return entries;
    }

    QSet<MenuItemKind> reachableKinds(const MenuSource &) const override { return {MenuItemKind::Settings}; }
    std::optional<MenuItemKind> libraryKind() const override { return MenuItemKind::Settings; }
    std::unique_ptr<SourceSearch> searchLibrary() const override { return std::make_unique<Search>(m_context); }

private:
    CustomMenuNode wholePane(const Pane &pane, int depth) const
    {
        CustomMenuNode node{pane, true, pane.items(), {}};
        // Catalogs nest a few levels at most; the bound guards a cycle in one.
        if (depth < 8) {
            for (const auto &child : pane.childPanes(m_context.catalog))
                node.children.append(wholePane(child, depth + 1));
        }
        return node;
    }

    class Search final : public SourceSearch
    {
    public:
        explicit Search(const SourceContext &context)
            : m_context(context)
        {
        }

        QList<SearchResult> results(const TextMatcher &matcher, int limit) override
        {
            const Catalog &catalog = m_context.catalog;
            // What contains the query, in catalog order, then what does
            // once punctuation and spaces are left out.
            RankedResults results(2, limit);
            const auto offer = [&](const QString &text, auto result) {
                const SearchText &searched = prepared(text);
                if (matcher.matches(searched))
                    results.add(0, result());
                else if (matcher.matchesLoosely(searched))
                    results.add(1, result());
            };
            const auto visit = [&](const Pane &pane) {
                if (!results.wantsMore())
                    return;
                const QString paneName = m_context.strings.paneName(pane);
                if (!pane.url.isEmpty())
                    offer(paneName, [&] { return SearchResult{paneName, pane.url, CatalogIcon{pane.icon}}; });
                for (const auto &item : pane.items()) {
                    if (!results.wantsMore())
                        break;
                    offer(m_context.strings.itemLabel(item), [&] {
                        return SearchResult{placeTitle(m_context.strings, pane, item), item.url,
                                            CatalogIcon{item.icon}};
                    });
                }
            };
            for (const auto &section : catalog.sections) {
                for (const auto &id : section) {
                    const auto pane = catalog.pane(id);
                    if (!pane)
                        continue;
                    visit(*pane);
                    for (const auto &child : pane->childPanes(catalog))
                        visit(child);
                }
            }
            return std::move(results).take();
        }

    private:
        const SearchText &prepared(const QString &text)
        {
            auto it = m_prepared.constFind(text);
            if (it == m_prepared.constEnd())
                it = m_prepared.insert(text, searchText(text));
            return *it;
        }

        const SourceContext &m_context;
        QHash<QString, SearchText> m_prepared;
    };

    const SourceContext &m_context;
};

} // namespace

std::unique_ptr<ContentSource> makeSystemSettingsSource(const ContentSources &sources)
{
    return std::make_unique<SystemSettingsSource>(sources.context());
}
