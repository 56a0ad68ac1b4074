#pragma once

#include <QObject>

#include <memory>

class QMenu;
class QSystemTrayIcon;

// The tray icon and the menu behind it. The menu is Quillon's own, popped at
// the icon on every activation, never handed to the panel.
class StatusMenuController : public QObject
{
    Q_OBJECT

public:
    explicit StatusMenuController(QObject *parent = nullptr);
    ~StatusMenuController() override;

    void openMenu();

private:
    void rebuildMenu();

    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
    std::unique_ptr<QMenu> m_menu;
};
