#include "sources/contentsources.h"

namespace {

// A line between two groups of the layout.
class SeparatorSource final : public ContentSource
{
public:
    MenuSource::Case kind() const override { return MenuSource::Case::Separator; }
    QString title(const MenuSource &) const override { return {}; }
    std::optional<ItemIcon> icon(const MenuSource &) const override { return std::nullopt; }
    MenuEntries items(const MenuSource &) const override { return {SeparatorEntry{}}; }
};

} // namespace

std::unique_ptr<ContentSource> makeSeparatorSource(const ContentSources &)
{
    return std::make_unique<SeparatorSource>();
}
