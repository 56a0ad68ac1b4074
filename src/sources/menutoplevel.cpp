#include "sources/menutoplevel.h"

#include "config/menustore.h"
#include "sources/contentsources.h"

namespace {

bool isSeparator(const MenuEntry &entry)
{
    return std::holds_alternative<SeparatorEntry>(entry);
}

// None at the start, none twice in a row, none at the end.
MenuEntries withoutSuperfluousSeparators(const MenuEntries &entries)
{
    MenuEntries kept;
    for (const MenuEntry &entry : entries) {
        if (isSeparator(entry) && (kept.isEmpty() || isSeparator(kept.last())))
            continue;
        kept.append(entry);
    }
    while (!kept.isEmpty() && isSeparator(kept.last()))
        kept.removeLast();
    return kept;
}

} // namespace

MenuEntries menuTopLevel(const ContentSources &sources)
{
    MenuEntries entries;
    for (const auto &layoutEntry : sources.context().store.layout()) {
        const MenuSource &source = layoutEntry.source;
        const ContentSource &kind = sources.of(source);
        if (layoutEntry.style == SourceStyle::Hidden)
            continue;
        if (layoutEntry.style == SourceStyle::Inline && !kind.isSingleItem()) {
            entries.append(kind.items(source));
        } else if (!kind.isAvailable(source)) {
            entries.append(OpenableEntry{
                kind.title(source), QUrl(),
                ThemeIcon{{QStringLiteral("dialog-warning"), QStringLiteral("emblem-important")}}, false});
        } else if (kind.isSingleItem()) {
            entries.append(kind.items(source));
        } else {
            entries.append(
                SubmenuEntry{kind.title(source), kind.icon(source), [&kind, source] { return kind.items(source); }});
        }
    }
    return withoutSuperfluousSeparators(entries);
}
