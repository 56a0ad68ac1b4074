#pragma once

#include "platform/tray.h"

#include <QMenu>

// A panel that places the icon where it is told to and pops menus up for
// real, recording where it was asked to put them.
class FakeTray final : public Tray
{
public:
    std::optional<QRect> geometry;
    TrayIcon icon;
    QString toolTip;
    QList<QPoint> fallbacks; // what each popUp was given for an unplaced icon

    TrayKind trayKind = TrayKind::PopUp;
    QMenu *exported = nullptr;

    TrayKind kind() const override { return trayKind; }
    void exportMenu(QMenu *menu) override { exported = menu; }
    void show(const TrayIcon &shown, const QString &tip) override
    {
        icon = shown;
        toolTip = tip;
    }
    std::optional<QRect> iconGeometry() const override { return geometry; }
    void popUp(QMenu *menu, const QPoint &fallback) override
    {
        fallbacks.append(fallback);
        menu->popup(geometry ? geometry->bottomLeft() : fallback);
    }

    void click(std::optional<QPoint> at = std::nullopt) { Q_EMIT activated(at); }
};
