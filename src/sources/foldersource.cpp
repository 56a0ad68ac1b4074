#include "config/menustore.h"
#include "config/urls.h"
#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
#include "sources/rankedresults.h"
#include "sources/sourcetitles.h"
#include "sources/textmatch.h"

#include <QFileInfo>

namespace {

// A file name without its last extension, as the search matches files.
QString withoutExtension(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.left(dot) : name;
}

// A folder the user added, listed in its chosen order.
class FolderSourceKind final : public ContentSource
{
public:
    explicit FolderSourceKind(const SourceContext &context)
        : m_context(context)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::Folder; }
    QString title(const MenuSource &source) const override
    {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder ? folderTitle(folder->url) : QString();
    }
    std::optional<ItemIcon> icon(const MenuSource &source) const override
    {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder ? std::optional<ItemIcon>(FileIcon{normalizedURL(folder->url).toLocalFile()}) : std::nullopt;
    }
    bool isAvailable(const MenuSource &source) const override
    {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder && QFileInfo(normalizedURL(folder->url).toLocalFile()).isDir();
    }

    MenuEntries items(const MenuSource &source) const override
    {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder ? folderEntries(m_context, folder->url, folder->sort) : MenuEntries();
    }
    std::function<MenuEntries()> itemsOffThread(const MenuSource &source) const override
    {
        const auto folder = m_context.store.folder(*source.uuid());
        if (!folder)
            return [] { return MenuEntries(); };
        return [&context = m_context, url = folder->url, sort = folder->sort] {
            return folderEntries(context, url, sort);
        };
    }

    std::unique_ptr<SourceSearch> searchSource(const MenuSource &source) const override
    {
        const auto folder = m_context.store.folder(*source.uuid());
        return folder ? std::make_unique<Search>(m_context, *folder) : nullptr;
    }

private:
    class Search final : public SourceSearch
    {
    public:
        Search(const SourceContext &context, FolderSource folder)
            : m_context(context)
            , m_folder(std::move(folder))
        {
        }

        QList<SearchResult> results(const TextMatcher &matcher, int limit) override
        {
            if (!m_entries) {
                QList<FoldedEntry> entries;
                for (const auto &entry : m_context.listWholeFolder(m_folder.url, m_folder.sort))
                    entries.append({entry, searchText(withoutExtension(entry.name))});
                m_entries = std::move(entries);
            }
            // Listing order; loose matches after the plain ones.
            RankedResults results(2, limit);
            for (const auto &[entry, text] : std::as_const(*m_entries)) {
                if (!results.wantsMore())
                    break;
                if (matcher.matches(text))
                    results.add(0, {entry.name, entry.url, FileIcon{entry.url.toLocalFile()}});
                else if (matcher.matchesLoosely(text))
                    results.add(1, {entry.name, entry.url, FileIcon{entry.url.toLocalFile()}});
            }
            return std::move(results).take();
        }

    private:
        struct FoldedEntry {
            FolderEntry entry;
            SearchText text;
        };

        const SourceContext &m_context;
        FolderSource m_folder;
        std::optional<QList<FoldedEntry>> m_entries; // listed once per session
    };

    const SourceContext &m_context;
};

} // namespace

std::unique_ptr<ContentSource> makeFolderSource(const ContentSources &sources)
{
    return std::make_unique<FolderSourceKind>(sources.context());
}
