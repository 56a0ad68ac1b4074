#include "platform/qt_tray.h"

#include "common/mainthread.h"

#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QSystemTrayIcon>

QtTray::QtTray(QObject *parent)
    : Tray(parent)
    , m_icon(std::make_unique<QSystemTrayIcon>())
{
    // Qt's tray reports no place for the click; the menu goes to the icon.
    connect(m_icon.get(), &QSystemTrayIcon::activated, this, [this] { Q_EMIT activated(std::nullopt); });
}

QtTray::~QtTray() = default;

void QtTray::show(const TrayIcon &icon, const QString &toolTip)
{
    QUILLON_ASSERT_MAIN_THREAD();
    // An XEmbed tray takes pixels only, and its panel's colour is unknown:
    // the drawing is the one legible on dark and light panels alike.
    m_icon->setIcon(icon.drawing);
    m_icon->setToolTip(toolTip);
    m_icon->show();
}

std::optional<QRect> QtTray::iconGeometry() const
{
    const QRect geometry = m_icon->geometry();
    if (!geometry.isValid() || geometry.isEmpty())
        return std::nullopt;
    return geometry;
}

void QtTray::popUp(QMenu *menu, const QPoint &fallback)
{
    QUILLON_ASSERT_MAIN_THREAD();
    const auto icon = iconGeometry();
    if (!icon) {
        menu->popup(fallback);
        return;
    }
    // Below an icon at the top of the screen, above one at the bottom.
    const QScreen *screen = QGuiApplication::screenAt(icon->center());
    const QRect available = screen ? screen->availableGeometry() : QRect();
    QPoint at(icon->left(), icon->bottom() + 1);
    if (available.isValid() && icon->center().y() > available.center().y())
        at.setY(icon->top() - menu->sizeHint().height());
    menu->popup(at);
}
