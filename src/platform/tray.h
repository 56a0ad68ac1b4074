#pragma once

#include "common/enumstrings.h"

#include <QIcon>
#include <QObject>
#include <QPoint>
#include <QRect>

#include <memory>
#include <optional>

class QMenu;

// How the menu reaches a person.
enum class TrayKind {
    PopUp,    // Quillon pops its own menu up at the icon
    Exported, // the panel draws the menu it was handed
    Absent,   // there is no panel to show an icon in
};

template<>
struct EnumCases<TrayKind> {
    static constexpr std::array<std::pair<TrayKind, const char *>, 3> cases{{
        {TrayKind::PopUp, "popUp"},
        {TrayKind::Exported, "exported"},
        {TrayKind::Absent, "absent"},
    }};
};

// What the panel shows: a drawing for trays that take pixels, and the theme
// name of a one-colour glyph that panels drawing icons by name recolour to
// match their text, with the folder of the theme it is in when that is not
// one of the usual ones.
struct TrayIcon {
    QIcon drawing;
    QString symbolicName;
    QString themeFolder;
};

// The icon in the desktop's panel: shows itself, says when it is clicked and,
// where the panel tells, where it is, and pops a menu up at itself or hands
// the menu to the panel. Lives on the main thread.
class Tray : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The tray of the running session: the panel's StatusNotifier host with
    // an exported menu on Wayland, Quillon's own popped-up menu on X11, or
    // none. QUILLON_TRAY names one instead ("qt", "sni", "sni-popup",
    // "none"); an unknown name is logged and the session's choice stands.
    static std::unique_ptr<Tray> forSession();

    virtual TrayKind kind() const = 0;
    virtual void show(const TrayIcon &icon, const QString &toolTip) = 0;
    // Where the icon is on screen; nothing when the panel does not say.
    virtual std::optional<QRect> iconGeometry() const = 0;
    // Pops the menu up at the icon, or at `fallback` when its place is unknown.
    virtual void popUp(QMenu *menu, const QPoint &fallback) = 0;
    // Hands the menu to a panel that draws it; the others ignore this.
    virtual void exportMenu(QMenu *) { }

Q_SIGNALS:
    // A click that asks for the menu; `at` is where the panel says it was, if it says.
    void activated(std::optional<QPoint> at);
    // A middle click, where the panel tells about one.
    void secondaryActivated(std::optional<QPoint> at);
};
