#pragma once

#include "app/statusmenu.h"

#include <QObject>

#include <memory>

class Tray;

// The icon in the panel and the menu behind it: every click on the icon pops
// Quillon's own menu at the icon, or closes it when it is open.
class StatusMenuController : public QObject
{
    Q_OBJECT

public:
    StatusMenuController(StatusMenu::Services services, std::unique_ptr<Tray> tray, std::function<void()> openSettings,
                         QObject *parent = nullptr);
    ~StatusMenuController() override;

    StatusMenu &statusMenu() { return *m_statusMenu; }
    bool isOpen() const { return m_statusMenu->isOpen(); }
    // Where the icon is, once the panel has placed it.
    std::optional<QRect> iconGeometry() const;

    // At the icon, or at the mouse when the panel does not say where the
    // icon is.
    void openMenu();
    void popUpAtMouse();

private:
    std::unique_ptr<StatusMenu> m_statusMenu;
    std::unique_ptr<Tray> m_tray;
};
