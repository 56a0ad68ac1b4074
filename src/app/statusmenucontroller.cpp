#include "app/statusmenucontroller.h"

#include "common/mainthread.h"

#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QSystemTrayIcon>

StatusMenuController::StatusMenuController(QObject *parent)
    : QObject(parent)
    , m_trayIcon(std::make_unique<QSystemTrayIcon>(QIcon(QStringLiteral(":/icons/quillon.svg"))))
    , m_menu(std::make_unique<QMenu>())
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_trayIcon->setToolTip(QStringLiteral("Quillon"));
    // Every kind of click opens the same menu; no context menu is attached so
    // the panel never draws a copy of its own.
    connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this, [this] { openMenu(); });
    m_trayIcon->show();
}

StatusMenuController::~StatusMenuController() = default;

void StatusMenuController::rebuildMenu()
{
    m_menu->clear();
    auto *quit = m_menu->addAction(tr("Quit Quillon"));
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, qApp, &QCoreApplication::quit);
}

void StatusMenuController::openMenu()
{
    QUILLON_ASSERT_MAIN_THREAD();
    rebuildMenu();
    const QRect icon = m_trayIcon->geometry();
    const QPoint at = icon.isValid() ? icon.bottomLeft() : QCursor::pos();
    m_menu->popup(at);
}
