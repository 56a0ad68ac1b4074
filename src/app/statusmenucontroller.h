#pragma once

#include "app/statusmenu.h"
#include "platform/tray.h"

#include <QObject>

#include <memory>

// The icon in the panel and the menu behind it. Where Quillon pops its own
// menu, every click on the icon opens it at the icon, or closes it when it
// is open. Where the panel draws the menu, the menu is handed over once and
// the panel's requests rebuild it.
class StatusMenuController : public QObject
{
    Q_OBJECT

public:
    struct Commands {
        std::function<void()> openSettings;
        // The first item of a menu the panel draws, in place of the field.
        std::function<void()> openSearch;
        std::function<QKeySequence()> searchHotKey;
    };

    StatusMenuController(StatusMenu::Services services, std::unique_ptr<Tray> tray, Commands commands,
                         QObject *parent = nullptr);
    ~StatusMenuController() override;

    StatusMenu &statusMenu() { return *m_statusMenu; }
    TrayKind trayKind() const { return m_tray->kind(); }
    bool isOpen() const { return m_statusMenu->isOpen(); }
    // Where the icon is, once the panel has placed it.
    std::optional<QRect> iconGeometry() const;

    // At the icon, or at the mouse when the panel does not say where the
    // icon is. Only for a tray whose menu Quillon pops up.
    void openMenu();
    void popUpAtMouse();

Q_SIGNALS:
    // A middle click on the icon.
    void searchWanted();

private:
    std::unique_ptr<StatusMenu> m_statusMenu;
    std::unique_ptr<Tray> m_tray;
};
