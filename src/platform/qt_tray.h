#pragma once

#include "platform/tray.h"

class QSystemTrayIcon;

// Qt's own tray icon, for the XEmbed tray of an X11 panel. Every click (left, right, middle) reports
// an activation; no menu is handed to the panel, which could host neither
// the search field nor lazily filled submenus.
class QtTray final : public Tray
{
    Q_OBJECT

public:
    explicit QtTray(QObject *parent = nullptr);
    ~QtTray() override;

    TrayKind kind() const override { return TrayKind::PopUp; }
    void show(const TrayIcon &icon, const QString &toolTip) override;
    std::optional<QRect> iconGeometry() const override;
    void popUp(QMenu *menu, const QPoint &fallback) override;

private:
    std::unique_ptr<QSystemTrayIcon> m_icon;
};
