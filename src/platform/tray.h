#pragma once

#include <QIcon>
#include <QObject>
#include <QPoint>
#include <QRect>

#include <memory>
#include <optional>

class QMenu;

// The icon in the desktop's panel: shows itself, says when it is clicked and,
// where the panel tells, where it is, and pops a menu up at itself. Lives on
// the main thread.
class Tray : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The tray of the running session. QUILLON_TRAY names one instead
    // ("qt"); an unknown name is logged and the session's choice stands.
    static std::unique_ptr<Tray> forSession();

    virtual void show(const QIcon &icon, const QString &toolTip) = 0;
    // Where the icon is on screen; nothing when the panel does not say.
    virtual std::optional<QRect> iconGeometry() const = 0;
    // Pops the menu up at the icon, or at `fallback` when its place is unknown.
    virtual void popUp(QMenu *menu, const QPoint &fallback) = 0;

Q_SIGNALS:
    // Any click on the icon; `at` is where the panel says it was, if it says.
    void activated(std::optional<QPoint> at);
};
