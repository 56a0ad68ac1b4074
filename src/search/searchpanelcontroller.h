#pragma once

#include "search/searchsession.h"

#include <QObject>
#include <QPointer>

#include <functional>

class Opener;
class SearchPanel;
class SearchPanelModel;
class SearchPanelView;
class ShortcutLibrary;

// Shows the search panel on demand and tears it down again. Each showing
// starts afresh: a new model, a new search session, empty caches. While
// shown, it watches the application's keys and clicks: Return or Enter opens
// the selection, Escape closes, the arrows move the selection, and a click in
// any other window closes the panel. Main thread only.
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
    void close();
    void moveSelection(int step);
    void openSelection();
    // Closes the panel, then records and opens `url`.
    void open(const QUrl &url);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool handleKey(int key);

    Services m_services;
    QPointer<SearchPanel> m_panel;
    QPointer<SearchPanelModel> m_model;
    QPointer<SearchPanelView> m_view;
};

// Where the body's top-left corner goes on a screen whose visible area is
// `visible`: centred, a fifth of the height down from the top.
QPoint searchPanelOrigin(const QRect &visible, int width);
