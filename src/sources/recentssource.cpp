#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/urls.h"
#include "sources/contentsources.h"
#include "sources/sourcetitles.h"

#include <QFileInfo>

namespace {

// What the user opened last, newest first, up to the chosen number.
class RecentsSource final : public ContentSource
{
public:
    RecentsSource(const SourceContext &context, const ContentSources &sources)
        : m_context(context)
        , m_sources(sources)
    {
    }

    MenuSource::Case kind() const override { return MenuSource::Case::Recents; }
    QString title(const MenuSource &) const override { return m_context.strings.text(SystemString::Recents); }
    std::optional<ItemIcon> icon(const MenuSource &) const override
    {
        return ThemeIcon{{QStringLiteral("document-open-recent"), QStringLiteral("document-open-recent-symbolic"),
                          QStringLiteral("folder-recent")}};
    }

    MenuEntries items(const MenuSource &) const override
    {
        MenuEntries entries;
        // The limit counts what is shown: an address left out makes room
        // for an older one.
        const qsizetype limit = std::max(m_context.store.recentsLimit(), 0);
        for (const QUrl &url : m_context.store.recents()) {
            if (entries.size() >= limit)
                break;
            // A file that is gone stays listed, disabled; an address nothing
            // describes any more (a deleted shortcut) is left out.
            if (url.isLocalFile() && !QFileInfo::exists(normalizedURL(url).toLocalFile())) {
                entries.append(OpenableEntry{folderTitle(url), url, std::nullopt, false});
                continue;
            }
            const auto described = m_sources.describe(url);
            if (!described) {
                if (!isShortcutRunURL(url) && !isSettingsURL(url))
                    entries.append(OpenableEntry{url.toDisplayString(), url, std::nullopt});
                continue;
            }
            entries.append(OpenableEntry{described->title, url, described->icon});
        }
        if (entries.isEmpty())
            return entries;
        entries.append(SeparatorEntry{});
        entries.append(CommandEntry{m_context.strings.text(SystemString::ClearMenu),
                                    [&store = m_context.store] { store.setRecents({}); }});
        return entries;
    }

private:
    const SourceContext &m_context;
    const ContentSources &m_sources;
};

} // namespace

std::unique_ptr<ContentSource> makeRecentsSource(const ContentSources &sources)
{
    return std::make_unique<RecentsSource>(sources.context(), sources);
}
