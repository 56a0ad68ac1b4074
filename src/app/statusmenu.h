#pragma once

#include "app/menubuilder.h"
#include "search/searchsession.h"

#include <QKeySequence>
#include <QMenu>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

class AboutWindow;
class Opener;
class Preferences;
class SearchFieldAction;
class ShortcutLibrary;
class Updates;
struct SystemRelease;

// The menu behind the tray icon, rebuilt from the configuration every time it
// opens: the search field, the user's layout (or, while typing, the search
// results), then the command block.
class StatusMenu : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxResults = 40;

    struct Services {
        const ContentSources &sources;
        ShortcutLibrary &shortcuts;
        Preferences &preferences;
        Updates &updates;
        const Opener &opener;
    };

    StatusMenu(Services services, std::function<void()> openSettings, QObject *parent = nullptr);
    ~StatusMenu() override;

    QMenu *menu() const { return m_menu.get(); }
    bool isOpen() const { return m_isOpen; }
    bool showsSearch() const;

    // For a panel that draws the menu itself, which has no room for a text
    // field: the first item opens the search panel instead, with the search
    // hot key shown beside it.
    void useSearchItem(std::function<void()> openSearch, std::function<QKeySequence()> hotKey);

    // Everything afresh: new search session, shortcut reload, new content.
    void rebuild();
    // Types into the search field, as a person would.
    void setSearchText(const QString &text);
    // The first item that opens something: what Return in the field opens.
    QAction *firstOpenableItem() const;

Q_SIGNALS:
    void aboutToOpen();

private:
    void buildContent();
    void removeItems(qsizetype keep);
    void addLayout();
    void addLayoutEntries(QMenu *menu, const QList<LayoutEntry> &entries);
    void addLayoutEntry(QMenu *menu, const LayoutEntry &entry);
    void addSearchResults(const QString &query);
    void addCommands();
    void removeSuperfluousSeparators(QMenu *menu, qsizetype from);
    void markUnavailableFiles(QMenu *menu, qsizetype from);
    void open(const QUrl &url);
    void openFirstItem();
    void showAbout();
    void sendFeedback();
    SearchFieldAction *searchItem();
    void addSearchPanelItem();

    Services m_services;
    std::function<void()> m_openSettings;
    MenuBuilder m_builder;
    std::unique_ptr<QMenu> m_menu;
    SearchFieldAction *m_searchItem = nullptr;
    std::function<void()> m_openSearch;
    std::function<QKeySequence()> m_searchHotKey;
    std::optional<SearchSession> m_session;
    std::unique_ptr<AboutWindow> m_about;
    bool m_isOpen = false;
};

// The feedback link, with the product's address: its subject names
// Quillon's version and the system's ("Quillon/1.2 debian/12.5.0 Feedback").
QUrl feedbackURL(const QString &version, const SystemRelease &system);
