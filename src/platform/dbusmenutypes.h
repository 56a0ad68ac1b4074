#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QStringList>
#include <QVariantMap>

// The values the com.canonical.dbusmenu interface sends, in its own shapes.

// One item's properties: (ia{sv}).
struct DBusMenuItem {
    int id = 0;
    QVariantMap properties;
    bool operator==(const DBusMenuItem &) const = default;
};
using DBusMenuItemList = QList<DBusMenuItem>;

// Property names an item no longer has: (ias).
struct DBusMenuItemKeys {
    int id = 0;
    QStringList properties;
    bool operator==(const DBusMenuItemKeys &) const = default;
};
using DBusMenuItemKeysList = QList<DBusMenuItemKeys>;

// An item with its children, each wrapped in a variant: (ia{sv}av).
struct DBusMenuLayoutItem {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayoutItem> children;
};
// Out of line: a defaulted comparison of a type that holds a list of itself
// sends Qt's equality traits round in a circle.
bool operator==(const DBusMenuLayoutItem &a, const DBusMenuLayoutItem &b);

// One event of EventGroup: (isvu).
struct DBusMenuEvent {
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
    bool operator==(const DBusMenuEvent &other) const
    {
        return id == other.id && eventId == other.eventId && data.variant() == other.data.variant()
               && timestamp == other.timestamp;
    }
};
using DBusMenuEventList = QList<DBusMenuEvent>;

// A key combination as lists of key names ("Control", "Alt", "space"): aas.
using DBusMenuShortcut = QList<QStringList>;

Q_DECLARE_METATYPE(DBusMenuItem)
Q_DECLARE_METATYPE(DBusMenuItemKeys)
Q_DECLARE_METATYPE(DBusMenuLayoutItem)
Q_DECLARE_METATYPE(DBusMenuEvent)

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItem &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemKeys &keys);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemKeys &keys);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayoutItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayoutItem &item);
QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event);

// Makes the types known to Qt's D-Bus marshalling; safe to call repeatedly.
void registerDBusMenuTypes();
