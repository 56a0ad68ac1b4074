#include "config/menustore.h"
#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
#include "sources/rankedresults.h"
#include "sources/sourcetitles.h"
#include "sources/textmatch.h"

namespace {

// Every installed application, in its menu categories, or only the
// favourites when the user asked for that.
class ApplicationsSource final : public ContentSource
{
public:
    explicit ApplicationsSource(const SourceContext &context)
        : m_context(context)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::Applications; }
    QString title(const MenuSource &) const override { return applicationsTitle(m_context.strings); }
    std::optional<ItemIcon> icon(const MenuSource &) const override
    {
        return ThemeIcon{{QStringLiteral("view-app-grid-symbolic"), QStringLiteral("applications-all"),
                          QStringLiteral("applications-other"), QStringLiteral("application-x-executable")}};
    }

    MenuEntries items(const MenuSource &) const override
    {
        const QList<AppEntry> tree = m_context.scanApps();
        if (!m_context.store.showsOnlyFavoriteApps())
            return appEntries(tree);
        // Only the favourites, flat, in the order of the tree.
        QList<AppEntry> favourites;
        for (const auto &app : AppLibrary::apps(tree)) {
            if (m_context.store.isFavorite(app.url))
                favourites.append(app);
        }
        return appEntries(favourites);
    }

    QSet<MenuItemKind> reachableKinds(const MenuSource &) const override { return {MenuItemKind::Apps}; }
    std::optional<MenuItemKind> libraryKind() const override { return MenuItemKind::Apps; }
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
            // Names that begin with the query first, then the others that
            // contain it, then those that do once punctuation and spaces are
            // left out; library order within each.
            enum Rank { Prefixed, Contained, Loose, Ranks };
            RankedResults results(Ranks, limit);
            for (const auto &[app, text] : apps()) {
                if (!results.wantsMore())
                    break;
                const bool contained = matcher.matches(text);
                if (!contained && !matcher.matchesLoosely(text))
                    continue;
                SearchResult result{app.name, app.url, std::nullopt};
                if (!app.icon.isEmpty())
                    result.icon = NamedIcon{app.icon};
                else if (app.url.isLocalFile())
                    result.icon = FileIcon{app.url.toLocalFile()};
                results.add(!contained                        ? Loose
                            : matcher.isPrefixOf(text.folded) ? Prefixed
                                                              : Contained,
                            std::move(result));
            }
            return std::move(results).take();
        }

    private:
        struct FoldedApp {
            App app;
            SearchText text;
        };

        // Scanned once per session.
        const QList<FoldedApp> &apps()
        {
            if (!m_apps) {
                QList<FoldedApp> folded;
                for (const auto &app : AppLibrary::apps(m_context.scanApps()))
                    folded.append({app, searchText(app.name)});
                m_apps = std::move(folded);
            }
            return *m_apps;
        }

        const SourceContext &m_context;
        std::optional<QList<FoldedApp>> m_apps;
    };

    const SourceContext &m_context;
};

} // namespace

std::unique_ptr<ContentSource> makeApplicationsSource(const ContentSources &sources)
{
    return std::make_unique<ApplicationsSource>(sources.context());
}
