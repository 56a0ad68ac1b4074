#include "app/statusmenucontroller.h"

#include "common/mainthread.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QSystemTrayIcon>

StatusMenuController::StatusMenuController(StatusMenu::Services services, std::function<void()> openSettings,
                                           QObject *parent)
    : QObject(parent)
    , m_statusMenu(std::make_unique<StatusMenu>(std::move(services), std::move(openSettings)))
    , m_trayIcon(std::make_unique<QSystemTrayIcon>(QIcon(QStringLiteral(":/icons/quillon.svg"))))
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_trayIcon->setToolTip(QStringLiteral("Quillon"));
    connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this, [this] {
        if (isOpen())
            m_statusMenu->menu()->close();
        else
            openMenu();
    });
    m_trayIcon->show();
}

StatusMenuController::~StatusMenuController() = default;

QRect StatusMenuController::iconGeometry() const
{
    return m_trayIcon->geometry();
}

void StatusMenuController::openMenu()
{
    QUILLON_ASSERT_MAIN_THREAD();
    const QRect icon = m_trayIcon->geometry();
    if (!icon.isValid() || icon.isEmpty()) {
        popUpAtMouse();
        return;
    }
    QMenu *menu = m_statusMenu->menu();
    // Below an icon at the top of the screen, above one at the bottom.
    const QScreen *screen = QGuiApplication::screenAt(icon.center());
    const QRect available = screen ? screen->availableGeometry() : QRect();
    const QSize size = menu->sizeHint();
    QPoint at(icon.left(), icon.bottom() + 1);
    if (available.isValid() && icon.center().y() > available.center().y())
        at.setY(icon.top() - size.height());
    menu->popup(at);
}

void StatusMenuController::popUpAtMouse()
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_statusMenu->menu()->popup(QCursor::pos());
}
