#pragma once

#include "search/searchresult.h"
#include "sources/applibrary.h"
#include "sources/folderlisting.h"

#include <QHash>
#include <QUuid>

#include <functional>

class MenuStore;
class ShortcutLibrary;
class SystemStrings;
struct Destination;

// What a search reads besides the store. The shared objects of the process
// by default; tests hand in their own.
struct SearchContext {
    const Catalog *catalog = nullptr;
    const QHash<QUrl, Destination> *destinations = nullptr;
    SystemStrings *strings = nullptr;
    const ShortcutLibrary *shortcuts = nullptr;
    std::function<QList<App>()> scanApps;
    std::function<QList<FolderEntry>(const FolderSource &)> listFolder;
    QString applicationsTitle;
    QString shortcutsTitle;

    static SearchContext shared(const ShortcutLibrary &shortcuts);
};

// One search over what the user's menus make reachable, grouped by kind.
// Applications and folders are read from disk at most once per session;
// make a new session for fresh content. Main thread only.
class SearchSession
{
public:
    SearchSession(const MenuStore &store, SearchContext context);

    QList<SearchGroup> search(const QString &query, int limit);
    // The display form of one stored item address, if it still exists.
    std::optional<SearchResult> entry(const QUrl &url);

private:
    struct FoldedApp {
        App app;
        QString folded;
    };
    struct FoldedEntry {
        FolderEntry entry;
        QString folded;
    };

    QList<SearchResult> searchApps(const class TextMatcher &matcher, int limit);
    QList<SearchResult> searchSettings(const class TextMatcher &matcher, int limit);
    QList<SearchResult> searchShortcuts(const class TextMatcher &matcher, int limit) const;
    QList<SearchResult> searchFolder(const FolderSource &folder, const class TextMatcher &matcher, int limit);
    const QList<FoldedApp> &apps();

    const MenuStore &m_store;
    SearchContext m_context;
    std::optional<QList<FoldedApp>> m_scannedApps;
    QHash<QUuid, QList<FoldedEntry>> m_folderItems;
    QHash<QString, QString> m_foldedSettings;
};
