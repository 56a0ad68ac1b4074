#pragma once

#include "config/layout.h"
#include "sources/menuentry.h"
#include "sources/searchresult.h"

#include <QSet>

#include <memory>
#include <optional>

class TextMatcher;

// One search over one source's items, made fresh for each search session so
// what it reads from disk is read at most once per session.
class SourceSearch
{
public:
    virtual ~SourceSearch() = default;
    virtual QList<SearchResult> results(const TextMatcher &matcher, int limit) = 0;
};

// One kind of content the menu can show (applications, a folder, the
// shortcuts, …): what it is called, how it looks, whether it is there, the
// items it contributes and how it is searched. The stored MenuSource says
// which instance is meant; one object serves every instance of its kind.
class ContentSource
{
public:
    virtual ~ContentSource() = default;

    virtual MenuSource::Case kind() const = 0;
    virtual QString title(const MenuSource &source) const = 0;
    virtual std::optional<ItemIcon> icon(const MenuSource &source) const = 0;
    // A folder that is gone, a menu that was deleted, a shortcut the tool no
    // longer lists.
    virtual bool isAvailable(const MenuSource &) const { return true; }
    // Shown as its one item wherever it stands, never as a submenu.
    virtual bool isSingleItem() const { return false; }
    virtual MenuEntries items(const MenuSource &source) const = 0;
    // For sources whose items are read from disk: items() as work that may
    // take long and is safe on a worker thread, made now, on the main thread.
    // Nothing when items() is cheap.
    virtual std::function<MenuEntries()> itemsOffThread(const MenuSource &) const { return nullptr; }

    // The kinds of item a visible source of this kind makes reachable: only
    // those are searched.
    virtual QSet<MenuItemKind> reachableKinds(const MenuSource &) const { return {}; }
    // Sources that stand for every item of one kind (all applications, all
    // settings places) search them once per session, as one group, when any
    // visible source reaches that kind.
    virtual std::optional<MenuItemKind> libraryKind() const { return std::nullopt; }
    virtual std::unique_ptr<SourceSearch> searchLibrary() const { return nullptr; }
    // Sources with items of their own (a folder) search them as a group of
    // their own, titled by the source.
    virtual std::unique_ptr<SourceSearch> searchSource(const MenuSource &) const { return nullptr; }
};
