#include "search/searchsession.h"

#include "catalog/destination.h"
#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "config/menustore.h"
#include "config/urls.h"
#include "search/itemdescription.h"
#include "search/textmatch.h"
#include "sources/shortcutlibrary.h"
#include "sources/sourcetitles.h"

#include <QSet>

namespace {

// A file name without its last extension, as the search matches files.
QString withoutExtension(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? name.left(dot) : name;
}

} // namespace

size_t qHash(const SearchResult &result, size_t seed) noexcept
{
    return qHashMulti(seed, result.title, result.url);
}

size_t qHash(const SearchGroup &group, size_t seed) noexcept
{
    return qHashMulti(seed, group.title, qHashRange(group.results.begin(), group.results.end()));
}

SearchContext SearchContext::shared(const ShortcutLibrary &shortcuts)
{
    SearchContext context;
    context.catalog = &Catalog::current();
    context.destinations = &Destination::index();
    context.strings = &SystemStrings::shared();
    context.shortcuts = &shortcuts;
    context.scanApps = [] { return AppLibrary::apps(AppLibrary::scan()); };
    context.listFolder = [](const FolderSource &folder) { return FolderListing::list(folder.url, folder.sort); };
    context.applicationsTitle = ::applicationsTitle();
    context.shortcutsTitle = ::shortcutsTitle();
    return context;
}

SearchSession::SearchSession(const MenuStore &store, SearchContext context)
    : m_store(store)
    , m_context(std::move(context))
{
}

QList<SearchGroup> SearchSession::search(const QString &query, int limit)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // Only what the menus make reachable: visible sources, and the kinds of
    // item that visible custom menus hold.
    QList<MenuSource> visible;
    for (const auto &entry : m_store.layout()) {
        if (entry.style != SourceStyle::Hidden)
            visible.append(entry.source);
    }
    QSet<MenuItemKind> kinds;
    bool shortcutsVisible = false;
    for (const auto &source : std::as_const(visible)) {
        if (source.kind() == MenuSource::Case::CustomMenu) {
            if (const auto menu = m_store.menu(*source.uuid())) {
                for (const auto &url : menu->urls)
                    kinds.insert(kindOf(url));
            }
        }
        shortcutsVisible = shortcutsVisible || source.kind() == MenuSource::Case::Shortcuts
            || source.kind() == MenuSource::Case::ShortcutFolder || source.kind() == MenuSource::Case::Shortcut;
    }

    const TextMatcher matcher(query);
    QList<SearchGroup> groups;
    if (visible.contains(MenuSource::applications()) || kinds.contains(MenuItemKind::Apps))
        groups.append({m_context.applicationsTitle, searchApps(matcher, limit)});
    if (visible.contains(MenuSource::systemSettings()) || kinds.contains(MenuItemKind::Settings))
        groups.append({m_context.strings->text(SystemString::SystemSettings), searchSettings(matcher, limit)});
    if (shortcutsVisible || kinds.contains(MenuItemKind::Shortcuts))
        groups.append({m_context.shortcutsTitle, searchShortcuts(matcher, limit)});
    for (const auto &source : std::as_const(visible)) {
        if (source.kind() != MenuSource::Case::Folder)
            continue;
        if (const auto folder = m_store.folder(*source.uuid()))
            groups.append({folderTitle(folder->url), searchFolder(*folder, matcher, limit)});
    }
    groups.removeIf([](const SearchGroup &group) { return group.results.isEmpty(); });
    return groups;
}

const QList<SearchSession::FoldedApp> &SearchSession::apps()
{
    if (!m_scannedApps) {
        QList<FoldedApp> folded;
        for (const auto &app : m_context.scanApps())
            folded.append({app, foldForSearch(app.name)});
        m_scannedApps = std::move(folded);
    }
    return *m_scannedApps;
}

QList<SearchResult> SearchSession::searchApps(const TextMatcher &matcher, int limit)
{
    // Names that begin with the query first; library order otherwise.
    QList<SearchResult> prefixed;
    QList<SearchResult> others;
    for (const auto &[app, folded] : apps()) {
        if (!matcher.matches(folded))
            continue;
        SearchResult result{app.name, app.url, std::nullopt};
        if (!app.icon.isEmpty())
            result.icon = NamedIcon{app.icon};
        else if (app.url.isLocalFile())
            result.icon = FileIcon{app.url.toLocalFile()};
        (matcher.isPrefixOf(folded) ? prefixed : others).append(result);
        if (prefixed.size() >= limit)
            break;
    }
    return (prefixed + others).mid(0, std::max(limit, 0));
}

QList<SearchResult> SearchSession::searchSettings(const TextMatcher &matcher, int limit)
{
    const Catalog &catalog = *m_context.catalog;
    const auto folded = [this](const QString &text) {
        auto it = m_foldedSettings.constFind(text);
        if (it == m_foldedSettings.constEnd())
            it = m_foldedSettings.insert(text, foldForSearch(text));
        return *it;
    };
    QList<SearchResult> results;
    const auto visit = [&](const Pane &pane) {
        if (results.size() >= limit)
            return;
        const QString paneName = m_context.strings->paneName(pane);
        if (matcher.matches(folded(paneName)))
            results.append({paneName, pane.url, CatalogIcon{pane.icon}});
        for (const auto &item : pane.items()) {
            const QString label = m_context.strings->itemLabel(item);
            if (results.size() < limit && matcher.matches(folded(label)))
                results.append({placeTitle(*m_context.strings, pane, item), item.url, CatalogIcon{item.icon}});
        }
    };
    for (const auto &section : catalog.sections) {
        for (const auto &id : section) {
            const auto pane = catalog.pane(id);
            if (!pane)
                continue;
            visit(*pane);
            for (const auto &child : pane->childPanes(catalog))
                visit(child);
        }
    }
    return results;
}

QList<SearchResult> SearchSession::searchShortcuts(const TextMatcher &matcher, int limit) const
{
    QList<SearchResult> results;
    if (!m_context.shortcuts)
        return results;
    for (const auto &shortcut : m_context.shortcuts->allShortcuts()) {
        if (results.size() >= limit)
            break;
        if (matcher.matches(foldForSearch(shortcut.name)))
            results.append({shortcut.name, shortcutURL(shortcut.id), std::nullopt});
    }
    return results;
}

QList<SearchResult> SearchSession::searchFolder(const FolderSource &folder, const TextMatcher &matcher, int limit)
{
    auto cached = m_folderItems.find(folder.id);
    if (cached == m_folderItems.end()) {
        QList<FoldedEntry> entries;
        for (const auto &entry : m_context.listFolder(folder))
            entries.append({entry, foldForSearch(withoutExtension(entry.name))});
        cached = m_folderItems.insert(folder.id, entries);
    }
    QList<SearchResult> results;
    for (const auto &[entry, folded] : std::as_const(*cached)) {
        if (results.size() >= limit)
            break;
        if (matcher.matches(folded))
            results.append({entry.name, entry.url, FileIcon{entry.url.toLocalFile()}});
    }
    return results;
}

std::optional<SearchResult> SearchSession::entry(const QUrl &url)
{
    QUILLON_ASSERT_MAIN_THREAD();
    return describeItem(url, m_context.shortcuts, m_context.destinations, *m_context.strings);
}
