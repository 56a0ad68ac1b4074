#pragma once

#include "catalog/destination.h"
#include "sources/applibrary.h"
#include "sources/contentsource.h"
#include "sources/folderlisting.h"

#include <QHash>

#include <array>
#include <functional>
#include <memory>

class AppIndex;
class ListingQueue;
class MenuStore;
class ShortcutLibrary;
class SystemStrings;

// What the sources read: the process's shared objects by default; tests hand
// in their own catalog, strings and listings.
struct SourceContext {
    MenuStore &store;
    const ShortcutLibrary &shortcuts;
    SystemStrings &strings;
    const Catalog &catalog;
    const QHash<QUrl, Destination> &destinations;
    std::function<QList<AppEntry>()> scanApps = [] { return AppLibrary::scan(); };
    // What a menu shows of a folder, and everything a search goes through.
    std::function<FolderPage(const QUrl &, FolderSort)> listFolder = &FolderListing::page;
    std::function<QList<FolderEntry>(const QUrl &, FolderSort)> listWholeFolder = &FolderListing::all;
    // Where menus read folders off the main thread; none: they read them at once.
    ListingQueue *listings = nullptr;

    // The installed catalog, the session's own strings and the running
    // application index.
    static SourceContext shared(MenuStore &store, const ShortcutLibrary &shortcuts, AppIndex &apps);
};

// The built-in kinds of content, one object each, looked up by the kind a
// stored MenuSource names.
class ContentSources
{
public:
    explicit ContentSources(SourceContext context);
    ~ContentSources();
    ContentSources(const ContentSources &) = delete;
    ContentSources &operator=(const ContentSources &) = delete;

    const SourceContext &context() const { return m_context; }
    const ContentSource &of(MenuSource::Case kind) const;
    const ContentSource &of(const MenuSource &source) const { return of(source.kind()); }
    // Every kind, in the order searches list their groups.
    QList<const ContentSource *> all() const;

    QString title(const MenuSource &source) const { return of(source).title(source); }
    std::optional<ItemIcon> icon(const MenuSource &source) const { return of(source).icon(source); }
    bool isAvailable(const MenuSource &source) const { return of(source).isAvailable(source); }
    MenuEntries items(const MenuSource &source) const { return of(source).items(source); }
    // The display form of one stored item address, if it still exists.
    std::optional<SearchResult> describe(const QUrl &url) const;

private:
    SourceContext m_context;
    std::array<std::unique_ptr<ContentSource>, EnumCases<MenuSource::Case>::cases.size()> m_sources;
    QList<const ContentSource *> m_ordered;
};
