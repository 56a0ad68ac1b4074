#include "search/searchpanel.h"

#include "platform/x11selection.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

namespace {

constexpr int shadowMargin = 28;
constexpr int shadowDrop = 6;
constexpr qreal cornerRadius = 14;

} // namespace

bool SearchPanel::canBlend()
{
    // Wayland compositors always blend; so does drawing off screen.
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        return x11ScreenSelectionOwned("_NET_WM_CM_S"); // a compositor runs
    return true;
}

bool SearchPanel::isPlacedByCompositor()
{
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

SearchPanel::SearchPanel(bool blended, QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_margin(blended ? shadowMargin : 0)
{
    setAttribute(Qt::WA_TranslucentBackground, blended);
    setWindowTitle(QStringLiteral("Quillon Search"));
}

void SearchPanel::setContent(QWidget *content)
{
    m_content = content;
    content->setParent(this);
    // The shadow falls below the body, so the margin is lopsided only in what
    // is drawn, not in where the body sits.
    content->move(m_margin, m_margin);
    content->show();
}

QRect SearchPanel::bodyRect() const
{
    return QRect(QPoint(m_margin, m_margin), m_body);
}

QRect SearchPanel::bodyGeometry() const
{
    return bodyRect().translated(geometry().topLeft());
}

void SearchPanel::moveBody(const QPoint &topLeft)
{
    // Wayland leaves placement to the compositor; there this is a wish.
    move(topLeft - QPoint(m_margin, m_margin));
}

void SearchPanel::resizeBody(const QSize &size)
{
    if (size.height() <= 0)
        return;
    m_body = size;
    if (m_content)
        m_content->setGeometry(bodyRect());
    applySize();
}

void SearchPanel::reserveBodyHeight(int height)
{
    m_reserved = std::max(0, height);
    applySize();
}

void SearchPanel::applySize()
{
    // Window geometry is anchored at the top left, so a plain resize keeps
    // the top edge still.
    const QSize frame(m_body.width() + 2 * m_margin, std::max(m_body.height(), m_reserved) + 2 * m_margin);
    setFixedSize(frame);
    if (m_reserved > 0) {
        // Clicks below the body go to whatever is underneath. Set on the
        // window, not the widget, so the shadow is still drawn.
        if (!windowHandle())
            create();
        windowHandle()->setMask(QRegion(0, 0, frame.width(), m_body.height() + 2 * m_margin));
    }
    update();
}

void SearchPanel::present()
{
    show();
    raise();
    activateWindow();
    // On X11 Qt asks the window manager with the time of the last event it
    // saw; a request that came in over D-Bus has no fresher one to offer.
    // On Wayland the compositor may want an activation token from whoever
    // pressed the key: Qt presents the one in XDG_ACTIVATION_TOKEN, which the
    // command's handler sets while it runs, at the first request (the one
    // above, from activateWindow).
    if (QWindow *window = windowHandle())
        window->requestActivate();
}

void SearchPanel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPalette &colors = palette();
    const QRectF body = QRectF(bodyRect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor border = colors.color(QPalette::WindowText);

    if (m_margin == 0) {
        painter.fillRect(rect(), colors.color(QPalette::Window));
        border.setAlphaF(0.35);
        painter.setPen(border);
        painter.drawRect(body);
        return;
    }

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // Layered translucent outlines, each a little larger: they add up to a
    // shadow that is darkest at the body and fades out towards the margin.
    const qreal drop = shadowDrop;
    for (int step = m_margin - int(drop); step > 0; --step) {
        QPainterPath layer;
        layer.addRoundedRect(body.adjusted(-step, -step + drop, step, step + drop), cornerRadius + step,
                             cornerRadius + step);
        painter.fillPath(layer, QColor(0, 0, 0, 5));
    }

    QPainterPath path;
    path.addRoundedRect(body, cornerRadius, cornerRadius);
    painter.fillPath(path, colors.color(QPalette::Window));
    border.setAlphaF(0.18);
    painter.setPen(QPen(border, 1));
    painter.drawPath(path);
}

void SearchPanel::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange)
        return;
    // Only a window that had the keyboard can lose it; a panel the window
    // manager never activated stays until dismissed otherwise.
    if (isActiveWindow()) {
        m_wasActive = true;
    } else if (m_wasActive) {
        m_wasActive = false;
        Q_EMIT dismissed();
    }
}

void SearchPanel::closeEvent(QCloseEvent *event)
{
    // Its owner tears it down, and knows it is gone.
    event->ignore();
    Q_EMIT dismissed();
}
