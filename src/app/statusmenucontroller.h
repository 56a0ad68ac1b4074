#pragma once

#include "app/statusmenu.h"

#include <QObject>

#include <memory>

class QSystemTrayIcon;

// The icon in the panel and the menu behind it. Every click (left, right,
// middle) pops Quillon's own menu at the icon: a menu handed to the panel
// could host neither the search field nor lazily filled submenus.
class StatusMenuController : public QObject
{
    Q_OBJECT

public:
    StatusMenuController(StatusMenu::Services services, std::function<void()> openSettings,
                         QObject *parent = nullptr);
    ~StatusMenuController() override;

    StatusMenu &statusMenu() { return *m_statusMenu; }
    bool isOpen() const { return m_statusMenu->isOpen(); }
    // Where the icon is, once the panel has placed it.
    QRect iconGeometry() const;

    // At the icon, or at the mouse when the panel does not say where the
    // icon is.
    void openMenu();
    void popUpAtMouse();

private:
    std::unique_ptr<StatusMenu> m_statusMenu;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
};
