#include "config/urls.h"
#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
#include "sources/rankedresults.h"
#include "sources/shortcutlibrary.h"
#include "sources/sourcetitles.h"
#include "sources/textmatch.h"

namespace {

// Every shortcut: each folder as a submenu, then the unfiled ones.
class ShortcutsSource final : public ContentSource
{
public:
    explicit ShortcutsSource(const SourceContext &context)
        : m_context(context)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::Shortcuts; }
    QString title(const MenuSource &) const override { return shortcutsTitle(); }
    std::optional<ItemIcon> icon(const MenuSource &) const override
    {
        return ThemeIcon{{QStringLiteral("system-run"), QStringLiteral("utilities-terminal"),
                          QStringLiteral("application-x-executable")}};
    }

    MenuEntries items(const MenuSource &) const override
    {
        // Folders keep their shortcuts together, as the tool files them.
        const auto &snapshot = m_context.shortcuts.snapshot();
        MenuEntries entries;
        for (const auto &folder : snapshot.folders) {
            entries.append(SubmenuEntry{folder.ref.name, folderIcon(),
                                        [shortcuts = folder.shortcuts] { return shortcutEntries(shortcuts); }});
        }
        if (!snapshot.folders.isEmpty() && !snapshot.unfiled.isEmpty())
            entries.append(SeparatorEntry{});
        entries.append(shortcutEntries(snapshot.unfiled));
        return entries;
    }

    QSet<MenuItemKind> reachableKinds(const MenuSource &) const override { return {MenuItemKind::Shortcuts}; }
    std::optional<MenuItemKind> libraryKind() const override { return MenuItemKind::Shortcuts; }
    std::unique_ptr<SourceSearch> searchLibrary() const override { return std::make_unique<Search>(m_context); }

private:
    class Search final : public SourceSearch
    {
    public:
        explicit Search(const SourceContext &context)
            : m_context(context)
        {
        }

        QList<SearchResult> results(const TextMatcher &matcher, int limit) override
        {
            // The tool's order; loose matches after the plain ones.
            RankedResults results(2, limit);
            for (const auto &shortcut : m_context.shortcuts.allShortcuts()) {
                if (!results.wantsMore())
                    break;
                const SearchText text = searchText(shortcut.name);
                if (matcher.matches(text))
                    results.add(0, {shortcut.name, shortcutURL(shortcut.id), std::nullopt});
                else if (matcher.matchesLoosely(text))
                    results.add(1, {shortcut.name, shortcutURL(shortcut.id), std::nullopt});
            }
            return std::move(results).take();
        }

    private:
        const SourceContext &m_context;
    };

    const SourceContext &m_context;
};

} // namespace

std::unique_ptr<ContentSource> makeShortcutsSource(const ContentSources &sources)
{
    return std::make_unique<ShortcutsSource>(sources.context());
}
