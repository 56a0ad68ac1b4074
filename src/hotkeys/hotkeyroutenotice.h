#pragma once

#include "hotkeys/bindingroute.h"

#include <QList>
#include <QWidget>

#include <functional>

class HotKeyCenter;
class QLabel;
class QPushButton;

// Where the desktop will not bind Quillon's hot keys: a paragraph that says
// so, Quillon's commands to bind in the desktop's own settings with a Copy
// button each, the line for the compositor's configuration file where it
// has one, and on GNOME an offer to add the custom shortcut. Hidden while
// every centre is fine.
class HotKeyRouteNotice : public QWidget
{
    Q_OBJECT

public:
    // Asked before anything is added to the desktop's settings; true to go on.
    using Confirm = std::function<bool(QWidget *parent, const QString &question)>;

    HotKeyRouteNotice(QList<HotKeyCenter *> centers, BindingRoute route, QWidget *parent = nullptr);

    QLabel *explanation() const { return m_explanation; }
    QPushButton *addToGnomeButton() const { return m_addToGnome; }
    QLabel *gnomeState() const { return m_gnomeState; }
    void setConfirm(Confirm confirm) { m_confirm = std::move(confirm); }

private:
    void refresh();
    void addCopyRow(QLabel *text);
    QString explanationText() const;
    HotKeyCombination keysFor(const HotKeyCenter &center) const;
    void addToGnome();

    QList<HotKeyCenter *> m_centers;
    BindingRoute m_route;
    QLabel *m_explanation;
    QList<QLabel *> m_configLines;
    QPushButton *m_addToGnome = nullptr;
    QLabel *m_gnomeState = nullptr;
    Confirm m_confirm;
};
