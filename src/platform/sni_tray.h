#pragma once

#include "platform/tray.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>

class DBusMenuExporter;
class QDBusServiceWatcher;
class StatusNotifierItem;

// Quillon's own StatusNotifierItem, for panels that host such items (Plasma,
// GNOME with the AppIndicator extension, waybar). With an exported menu the
// panel draws it at the icon, which is the only way a Wayland client gets a
// menu there; without one, every click reports where the panel says it was
// and Quillon pops its own menu up at that point.
class SniTray final : public Tray
{
    Q_OBJECT

public:
    static constexpr const char *watcherService = "org.kde.StatusNotifierWatcher";
    static constexpr const char *itemPath = "/StatusNotifierItem";
    static constexpr const char *menuPath = "/MenuBar";

    enum class MenuMode { Exported, PoppedUp };

    explicit SniTray(MenuMode mode, const QDBusConnection &bus = QDBusConnection::sessionBus(),
                     QObject *parent = nullptr);
    ~SniTray() override;

    // The service name the item is published under.
    QString serviceName() const { return m_service; }

    TrayKind kind() const override;
    void show(const TrayIcon &icon, const QString &toolTip) override;
    std::optional<QRect> iconGeometry() const override;
    void popUp(QMenu *menu, const QPoint &fallback) override;
    void exportMenu(QMenu *menu) override;

private:
    friend class StatusNotifierItem;
    void clicked(int x, int y);
    void middleClicked(int x, int y);
    void noteClick(int x, int y);
    void registerWithWatcher();

    MenuMode m_mode;
    QDBusConnection m_bus;
    QString m_service;
    StatusNotifierItem *m_item;
    DBusMenuExporter *m_exporter = nullptr;
    QDBusServiceWatcher *m_watcher;
    std::optional<QPoint> m_lastClick;
    bool m_shown = false;
};
