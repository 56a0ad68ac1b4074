#include "app/statusmenucontroller.h"

#include "common/log.h"
#include "common/mainthread.h"
#include "platform/ownicons.h"

#include <QCursor>
#include <QMenu>

StatusMenuController::StatusMenuController(StatusMenu::Services services, std::unique_ptr<Tray> tray, Commands commands,
                                           QObject *parent)
    : QObject(parent)
    , m_statusMenu(std::make_unique<StatusMenu>(std::move(services), std::move(commands.openSettings)))
    , m_tray(std::move(tray))
{
    QUILLON_ASSERT_MAIN_THREAD();
    connect(m_tray.get(), &Tray::activated, this, [this](std::optional<QPoint> at) {
        // A panel that draws the menu shows it by itself; anything Quillon
        // opened here would be a window of its own beside that menu.
        if (m_tray->kind() != TrayKind::PopUp)
            return;
        if (isOpen()) {
            m_statusMenu->menu()->close();
            return;
        }
        m_tray->popUp(m_statusMenu->menu(), at.value_or(QCursor::pos()));
    });
    connect(m_tray.get(), &Tray::secondaryActivated, this, &StatusMenuController::searchWanted);
    qCInfo(lcTray) << "Tray:" << enumToString(m_tray->kind());
    if (m_tray->kind() == TrayKind::Exported) {
        if (commands.openSearch)
            m_statusMenu->useSearchItem(std::move(commands.openSearch), std::move(commands.searchHotKey));
        // The panel may ask for the menu before it first shows it.
        m_statusMenu->rebuild();
        m_tray->exportMenu(m_statusMenu->menu());
    }
    m_tray->show(trayIcon(), QStringLiteral("Quillon"));
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
