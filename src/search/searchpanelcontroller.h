#pragma once

#include "search/panelnotice.h"
#include "search/searchsession.h"

#include <QObject>
#include <QPoint>
#include <QPointer>

#include <functional>

class Opener;
class QKeyEvent;
class SearchPanel;
class SearchPanelModel;
class SearchPanelView;
class ShortcutLibrary;

// Shows the search panel on demand and tears it down again. Each showing
// starts afresh: a new model, a new search session, empty caches. While
// shown, it watches the application's keys and clicks: Return or Enter opens
// the selection, Escape closes, the arrows move the selection, and a click in
// any other window closes the panel. Main thread only.
//
// Shown as the menu (showMenu), the empty field stands over the menu's top
// level and the commands given. Return, Enter or Right on a submenu goes into
// it; Left or Backspace in the empty field goes back up; Return on an item
// opens it as a search result would, on a command runs it. Typing searches.
class SearchPanelController : public QObject
{
    Q_OBJECT

public:
    struct Services {
        const ContentSources &sources;
        ShortcutLibrary &shortcuts;
        const Opener &opener;
    };

    explicit SearchPanelController(Services services, QObject *parent = nullptr);
    ~SearchPanelController() override;

    bool isShown() const;
    SearchPanel *panel() const;
    SearchPanelModel *model() const;
    SearchPanelView *view() const;

    void toggle();
    void show();
    // Shows the panel browsing the menu's top level, `commands` after it
    // (such as Settings… and Quit). Shown already: back to that top level.
    void showMenu(MenuEntries commands);
    // Shows the panel, if it is not shown, with `notice` above the field.
    // The notice stays until the panel closes.
    void showNotice(const PanelNotice &notice);
    void close();
    void moveSelection(int step);
    // Return: opens the selected result or menu item, enters the selected
    // submenu, or runs the selected command.
    void openSelection();
    // Closes the panel, then records and opens `url`.
    void open(const QUrl &url);
    // Acts on the entry at this index of the menu level shown, as Return does.
    void activateEntry(int entry);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool handleKey(const QKeyEvent *event, QObject *receiver);
    void place();

    Services m_services;
    QPointer<SearchPanel> m_panel;
    QPointer<SearchPanelModel> m_model;
    QPointer<SearchPanelView> m_view;
};

// Where the panel goes on a screen, and how tall its list may grow.
struct SearchPanelGeometry {
    QPoint bodyTopLeft;
    int maxResultsHeight = 0;
    bool operator==(const SearchPanelGeometry &) const = default;
};

// On a screen whose available area is `available`: centred, the body's top a
// fifth of the height down, the list as tall as `maxResultsHeight` at most.
// The body at its tallest (`fixedHeight` for notice and field, plus the
// list), with `margin` of shadow around it, stays on the screen: the list is
// shortened first, and where that would leave too little of it the body
// moves up.
SearchPanelGeometry searchPanelGeometry(const QRect &available, int width, int margin, int fixedHeight,
                                        int maxResultsHeight);
