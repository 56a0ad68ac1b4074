#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
#include "sources/shortcutlibrary.h"

namespace {

// One shortcut the user put straight into the layout.
class ShortcutSource final : public ContentSource
{
public:
    explicit ShortcutSource(const SourceContext &context)
        : m_context(context)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::Shortcut; }
    QString title(const MenuSource &source) const override { return source.shortcutRef()->name; }
    std::optional<ItemIcon> icon(const MenuSource &) const override { return std::nullopt; }
    bool isAvailable(const MenuSource &source) const override
    {
        return !m_context.shortcuts.hasLoaded() || m_context.shortcuts.contains(source.shortcutRef()->id);
    }
    bool isSingleItem() const override { return true; }

    MenuEntries items(const MenuSource &source) const override { return shortcutEntries({*source.shortcutRef()}); }

    QSet<MenuItemKind> reachableKinds(const MenuSource &) const override { return {MenuItemKind::Shortcuts}; }

private:
    const SourceContext &m_context;
};

} // namespace

std::unique_ptr<ContentSource> makeShortcutSource(const ContentSources &sources)
{
    return std::make_unique<ShortcutSource>(sources.context());
}
