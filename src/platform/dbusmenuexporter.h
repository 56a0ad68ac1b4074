#pragma once

#include "platform/dbusmenutypes.h"

#include <QCache>
#include <QDBusConnection>
#include <QDBusContext>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>

class QAction;
class QMenu;

// Publishes a QMenu over com.canonical.dbusmenu, so a panel draws it natively
// at its icon. The menu itself is never shown: the panel's requests stand in
// for a person. AboutToShow on a menu emits its aboutToShow (where lazy
// submenus fill and the root rebuilds), "clicked" triggers the action, and a
// "closed" root emits aboutToHide. Changes to the menus' actions are announced
// with LayoutUpdated and ItemsPropertiesUpdated. Items keep their id for as
// long as their action lives; the root is 0.
class DBusMenuExporter : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    static constexpr int rootId = 0;

    explicit DBusMenuExporter(QMenu *menu, QObject *parent = nullptr);
    ~DBusMenuExporter() override;

    // Puts the menu on `bus` at `path`; false (and logged) when the bus refuses.
    bool publish(QDBusConnection bus, const QString &path);

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

    // The item's id, assigning one if the action is new.
    int idOf(QAction *action);
    // The properties the panel is given for the item.
    QVariantMap properties(QAction *action);
    // A label with the menu's "&" mnemonics in DBusMenu's "_" form.
    static QString label(const QString &text);
    // Key names as DBusMenu spells them: Control, Alt, Shift, Super, then the key.
    static DBusMenuShortcut shortcut(const QKeySequence &sequence);

public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames, DBusMenuLayoutItem &layout);
    DBusMenuItemList GetGroupProperties(const QList<int> &ids, const QStringList &propertyNames);
    QDBusVariant GetProperty(int id, const QString &name);
    void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    QList<int> EventGroup(const DBusMenuEventList &events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const DBusMenuItemList &updatedProps, const DBusMenuItemKeysList &removedProps);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QMenu *menuOf(int id) const;
    QAction *actionOf(int id) const;
    void watch(QMenu *menu);
    DBusMenuLayoutItem layoutOf(int id, QMenu *menu, int depth, const QStringList &names);
    void appendChildren(DBusMenuLayoutItem &item, QMenu *menu, int depth, const QStringList &names);
    QByteArray iconData(const QIcon &icon);
    bool showMenu(int id);
    bool handleEvent(int id, const QString &eventId);
    void scheduleUpdate();
    void sendUpdates();
    void refuse(const QString &what);

    QPointer<QMenu> m_menu;
    QHash<QAction *, int> m_ids;
    QHash<int, QPointer<QAction>> m_actions;
    // The separator drawn before a section title, which has no action of its own.
    QHash<QAction *, int> m_sectionSeparators;
    // The disabled stand-in shown in a submenu that has not been filled yet.
    QHash<QMenu *, int> m_placeholders;
    QSet<QMenu *> m_watched;
    QCache<qint64, QByteArray> m_icons;
    int m_nextId = 1;
    uint m_revision = 1;
    // What changed since the last announcement.
    QSet<int> m_changedLayouts;
    QSet<int> m_changedItems;
    bool m_updateScheduled = false;
};
