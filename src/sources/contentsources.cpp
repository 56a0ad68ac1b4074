#include "sources/contentsources.h"

#include "catalog/systemstrings.h"
#include "sources/appindex.h"
#include "sources/itemdescription.h"
#include "sources/listingqueue.h"

// Each kind lives in a file of its own; this list is the only place that
// names them all. Searches list their groups in this order.
std::unique_ptr<ContentSource> makeApplicationsSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeSystemSettingsSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeShortcutsSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeShortcutFolderSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeShortcutSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeFolderSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeCustomMenuSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeRecentsSource(const ContentSources &sources);
std::unique_ptr<ContentSource> makeSeparatorSource(const ContentSources &sources);

namespace {

using Factory = std::unique_ptr<ContentSource> (*)(const ContentSources &);

constexpr Factory builtInSources[] = {
    makeApplicationsSource, makeSystemSettingsSource, makeShortcutsSource, makeShortcutFolderSource, makeShortcutSource,
    makeFolderSource,       makeCustomMenuSource,     makeRecentsSource,   makeSeparatorSource,
};

std::size_t indexOf(MenuSource::Case kind)
{
    return std::size_t(kind);
}

} // namespace

SourceContext SourceContext::shared(MenuStore &store, const ShortcutLibrary &shortcuts, AppIndex &apps)
{
    return SourceContext{store,
                         shortcuts,
                         SystemStrings::shared(),
                         Catalog::current(),
                         Destination::index(),
                         [&apps] { return apps.tree(); },
                         &FolderListing::page,
                         &FolderListing::all,
                         &ListingQueue::shared()};
}

ContentSources::ContentSources(SourceContext context)
    : m_context(std::move(context))
{
    for (const Factory make : builtInSources) {
        auto source = make(*this);
        auto &slot = m_sources.at(indexOf(source->kind()));
        Q_ASSERT_X(!slot, Q_FUNC_INFO, "two sources for one kind");
        m_ordered.append(source.get());
        slot = std::move(source);
    }
    for (const auto &[kind, name] : EnumCases<MenuSource::Case>::cases) {
        if (!m_sources.at(indexOf(kind)))
            qFatal("No content source for the kind \"%s\"", name);
    }
}

ContentSources::~ContentSources() = default;

const ContentSource &ContentSources::of(MenuSource::Case kind) const
{
    return *m_sources.at(indexOf(kind));
}

QList<const ContentSource *> ContentSources::all() const
{
    return m_ordered;
}

std::optional<SearchResult> ContentSources::describe(const QUrl &url) const
{
    return describeItem(url, &m_context.shortcuts, &m_context.destinations, m_context.strings);
}
