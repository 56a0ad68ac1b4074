#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
#include "sources/shortcutlibrary.h"

namespace {

// One folder of shortcuts, as the tool files them.
class ShortcutFolderSource final : public ContentSource
{
public:
    explicit ShortcutFolderSource(const SourceContext &context)
        : m_context(context)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::ShortcutFolder; }
    QString title(const MenuSource &source) const override { return source.shortcutRef()->name; }
    std::optional<ItemIcon> icon(const MenuSource &) const override { return folderIcon(); }
    bool isAvailable(const MenuSource &source) const override
    {
        // Until the tool has answered once, give the folder the benefit of the doubt.
        return !m_context.shortcuts.hasLoaded() || m_context.shortcuts.folder(source.shortcutRef()->id).has_value();
    }

    MenuEntries items(const MenuSource &source) const override
    {
        if (const auto folder = m_context.shortcuts.folder(source.shortcutRef()->id))
            return shortcutEntries(folder->shortcuts);
        return {};
    }

    QSet<MenuItemKind> reachableKinds(const MenuSource &) const override { return {MenuItemKind::Shortcuts}; }

private:
    const SourceContext &m_context;
};

} // namespace

std::unique_ptr<ContentSource> makeShortcutFolderSource(const ContentSources &sources)
{
    return std::make_unique<ShortcutFolderSource>(sources.context());
}
