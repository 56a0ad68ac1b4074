#include "search/searchpanelcontroller.h"

#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "config/menustore.h"
#include "platform/opener.h"
#include "search/searchpanel.h"
#include "search/searchpanelmodel.h"
#include "search/searchpanelrows.h"
#include "search/searchpanelview.h"
#include "sources/menutoplevel.h"
#include "sources/shortcutlibrary.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScreen>

#include <algorithm>

namespace {

// Less list than this is hardly a list: three rows.
constexpr int shortestUsefulList = 3 * SearchPanelDelegate::rowHeight + 12;

const QString menuTitle = QStringLiteral("Quillon");

} // namespace

SearchPanelGeometry searchPanelGeometry(const QRect &available, int width, int margin, int fixedHeight,
                                        int maxResultsHeight)
{
    const int bottom = available.y() + available.height() - margin; // the body ends above this
    const int wanted = std::min(maxResultsHeight, shortestUsefulList);
    int top = available.y() + available.height() / 5;
    if (bottom - top - fixedHeight < wanted)
        top = std::max(available.y() + margin, bottom - fixedHeight - wanted);
    return SearchPanelGeometry{QPoint(available.x() + available.width() / 2 - width / 2, top),
                               std::clamp(bottom - top - fixedHeight, 0, maxResultsHeight)};
}

SearchPanelController::SearchPanelController(Services services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services))
{
}

SearchPanelController::~SearchPanelController()
{
    close();
}

bool SearchPanelController::isShown() const
{
    return !m_panel.isNull();
}

SearchPanel *SearchPanelController::panel() const
{
    return m_panel;
}

SearchPanelModel *SearchPanelController::model() const
{
    return m_model;
}

SearchPanelView *SearchPanelController::view() const
{
    return m_view;
}

void SearchPanelController::toggle()
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (isShown())
        close();
    else
        show();
}

void SearchPanelController::show()
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (isShown())
        return;
    // Shortcut results should be current, as the menu's are when it opens.
    m_services.shortcuts.refresh();

    auto *panel = new SearchPanel(SearchPanel::canBlend());
    // The model belongs to the panel, so both go together when it closes.
    auto *model = new SearchPanelModel(m_services.sources, panel);
    auto *view = new SearchPanelView(model, m_services.sources.context().strings.text(SystemString::Search),
                                     m_services.sources.context().strings.text(SystemString::NoItems));
    panel->setContent(view);
    m_panel = panel;
    m_model = model;
    m_view = view;
    connect(panel, &SearchPanel::dismissed, this, &SearchPanelController::close);
    connect(view, &SearchPanelView::openRequested, this, &SearchPanelController::open);
    connect(view, &SearchPanelView::entryActivated, this, &SearchPanelController::activateEntry);
    connect(view, &SearchPanelView::contentSizeChanged, panel, &SearchPanel::resizeBody);

    place();

    // Set before showing, the field has the keyboard as soon as the window does.
    view->field()->setFocus(Qt::ActiveWindowFocusReason);
    panel->present();
    // Keys and clicks of the whole application pass by here while shown.
    qApp->installEventFilter(this);
}

void SearchPanelController::place()
{
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const SearchPanelGeometry geometry =
        searchPanelGeometry(screen ? screen->availableGeometry() : QRect(), SearchPanelView::width, m_panel->margin(),
                            m_view->fixedHeight(), SearchPanelView::maxResultsHeight);
    m_view->setMaxResultsHeight(geometry.maxResultsHeight);
    if (SearchPanel::isPlacedByCompositor())
        m_panel->reserveBodyHeight(m_view->fixedHeight() + geometry.maxResultsHeight);
    m_panel->resizeBody(m_view->contentSize());
    // A wish only where the compositor places windows.
    m_panel->moveBody(geometry.bodyTopLeft);
}

void SearchPanelController::showMenu(MenuEntries commands)
{
    QUILLON_ASSERT_MAIN_THREAD();
    show();
    MenuEntries entries = menuTopLevel(m_services.sources);
    if (!commands.isEmpty()) {
        if (!entries.isEmpty())
            entries.append(SeparatorEntry{});
        entries.append(std::move(commands));
    }
    m_view->field()->clear();
    m_model->browse(menuTitle, std::move(entries));
}

void SearchPanelController::showNotice(const PanelNotice &notice)
{
    QUILLON_ASSERT_MAIN_THREAD();
    show();
    m_view->setNotice(notice);
    place();
}

void SearchPanelController::close()
{
    QUILLON_ASSERT_MAIN_THREAD();
    SearchPanel *panel = m_panel;
    if (!panel)
        return;
    qApp->removeEventFilter(this);
    m_panel.clear();
    m_model.clear();
    m_view.clear();
    panel->disconnect(this);
    panel->hide();
    // Later: this may run inside one of the panel's own event handlers.
    panel->deleteLater();
}

void SearchPanelController::moveSelection(int step)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (m_model)
        m_model->moveSelection(step);
}

void SearchPanelController::openSelection()
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!m_model)
        return;
    if (m_model->isBrowsing()) {
        if (const auto entry = m_model->browser()->selected())
            activateEntry(*entry);
        return;
    }
    if (m_model->selection())
        open(*m_model->selection());
}

void SearchPanelController::activateEntry(int entry)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (!m_model || !m_model->isBrowsing())
        return;
    const MenuEntries &entries = m_model->browser()->entries();
    if (entry < 0 || entry >= entries.size() || !MenuBrowser::canChoose(entries.at(entry)))
        return;
    // Copied: closing lets go of the menu that holds it.
    const MenuEntry chosen = entries.at(entry);
    if (const auto *item = std::get_if<OpenableEntry>(&chosen)) {
        open(item->url);
    } else if (std::holds_alternative<SubmenuEntry>(chosen)) {
        m_model->enter(entry);
    } else if (const auto *command = std::get_if<CommandEntry>(&chosen)) {
        close();
        if (command->run)
            command->run();
    }
}

void SearchPanelController::open(const QUrl &url)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // Out of the way first, so what opens can take the keyboard.
    close();
    m_services.sources.context().store.recordRecent(url);
    m_services.opener.open(url);
}

bool SearchPanelController::handleKey(const QKeyEvent *event, QObject *receiver)
{
    const int key = event->key();
    // A notice's button takes its own Return and Space.
    if (qobject_cast<QAbstractButton *>(receiver) && key != Qt::Key_Escape)
        return false;
    const bool browsing = m_model && m_model->isBrowsing();
    const bool fieldEmpty = m_view && m_view->field()->text().isEmpty();
    switch (key) {
    case Qt::Key_Right:
        if (!browsing)
            return false;
        if (const auto entry = m_model->browser()->selected())
            m_model->enter(*entry);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Backspace:
        if (!browsing || !fieldEmpty)
            return false;
        m_model->back();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        openSelection();
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    case Qt::Key_Down:
        moveSelection(+1);
        return true;
    case Qt::Key_Up:
        moveSelection(-1);
        return true;
    default:
        return false;
    }
}

bool SearchPanelController::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::MouseButtonPress)
        return false;
    auto *widget = qobject_cast<QWidget *>(watched);
    if (!widget || !m_panel)
        return false;
    // The field's own context menu is a window of its own, yet part of the panel.
    bool inPanel = false;
    for (const QWidget *w = widget; w && !inPanel; w = w->parentWidget())
        inPanel = w == m_panel;

    if (type == QEvent::KeyPress)
        return inPanel && handleKey(static_cast<QKeyEvent *>(event), watched);

    // A press on the shadow around the body is outside too. The press goes on
    // to where it was headed either way.
    const auto *press = static_cast<QMouseEvent *>(event);
    const bool onBody = m_panel->bodyGeometry().contains(press->globalPosition().toPoint());
    if (!inPanel || (widget == m_panel && !onBody))
        close();
    return false;
}
