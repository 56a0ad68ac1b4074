#include "app/statusmenucontroller.h"

#include "common/mainthread.h"
#include "platform/tray.h"

#include <QCursor>
#include <QMenu>

StatusMenuController::StatusMenuController(StatusMenu::Services services, std::unique_ptr<Tray> tray,
                                           std::function<void()> openSettings, QObject *parent)
    : QObject(parent)
    , m_statusMenu(std::make_unique<StatusMenu>(std::move(services), std::move(openSettings)))
    , m_tray(std::move(tray))
{
    QUILLON_ASSERT_MAIN_THREAD();
    connect(m_tray.get(), &Tray::activated, this, [this](std::optional<QPoint> at) {
        if (isOpen()) {
            m_statusMenu->menu()->close();
            return;
        }
        m_tray->popUp(m_statusMenu->menu(), at.value_or(QCursor::pos()));
    });
    m_tray->show(QIcon(QStringLiteral(":/icons/quillon.svg")), QStringLiteral("Quillon"));
}

StatusMenuController::~StatusMenuController() = default;

std::optional<QRect> StatusMenuController::iconGeometry() const
{
    return m_tray->iconGeometry();
}

void StatusMenuController::openMenu()
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_tray->popUp(m_statusMenu->menu(), QCursor::pos());
}

void StatusMenuController::popUpAtMouse()
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_statusMenu->menu()->popup(QCursor::pos());
}
