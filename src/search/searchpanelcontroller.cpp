#include "search/searchpanelcontroller.h"

#include "catalog/systemstrings.h"
#include "common/mainthread.h"
#include "config/menustore.h"
#include "platform/opener.h"
#include "search/searchpanel.h"
#include "search/searchpanelmodel.h"
#include "search/searchpanelview.h"
#include "sources/shortcutlibrary.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScreen>

QPoint searchPanelOrigin(const QRect &visible, int width)
{
    return QPoint(visible.x() + visible.width() / 2 - width / 2, visible.y() + visible.height() / 5);
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
    connect(view, &SearchPanelView::contentSizeChanged, panel, &SearchPanel::resizeBody);

    panel->resizeBody(view->contentSize());
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    panel->moveBody(searchPanelOrigin(screen ? screen->availableGeometry() : QRect(), SearchPanelView::width));

    // Set before showing, the field has the keyboard as soon as the window does.
    view->field()->setFocus(Qt::ActiveWindowFocusReason);
    panel->present();
    // Keys and clicks of the whole application pass by here while shown.
    qApp->installEventFilter(this);
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
    if (m_model && m_model->selection())
        open(*m_model->selection());
}

void SearchPanelController::open(const QUrl &url)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // Out of the way first, so what opens can take the keyboard.
    close();
    m_services.sources.context().store.recordRecent(url);
    m_services.opener.open(url);
}

bool SearchPanelController::handleKey(int key)
{
    switch (key) {
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
        return inPanel && handleKey(static_cast<QKeyEvent *>(event)->key());

    // A press on the shadow around the body is outside too. The press goes on
    // to where it was headed either way.
    const auto *press = static_cast<QMouseEvent *>(event);
    const bool onBody = m_panel->bodyGeometry().contains(press->globalPosition().toPoint());
    if (!inPanel || (widget == m_panel && !onBody))
        close();
    return false;
}
