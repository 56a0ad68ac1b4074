#include "config/menustore.h"
#include "config/urls.h"
#include "sources/contentsources.h"
#include "sources/entrybuilders.h"
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
                for (const auto &entry : m_context.listFolder(m_folder.url, m_folder.sort))
                    entries.append({entry, foldForSearch(withoutExtension(entry.name))});
                m_entries = std::move(entries);
            }
            QList<SearchResult> results;
            for (const auto &[entry, folded] : std::as_const(*m_entries)) {
                if (results.size() >= limit)
                    break;
                if (matcher.matches(folded))
                    results.append({entry.name, entry.url, FileIcon{entry.url.toLocalFile()}});
            }
            return results;
        }

    private:
        struct FoldedEntry {
            FolderEntry entry;
            QString folded;
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
