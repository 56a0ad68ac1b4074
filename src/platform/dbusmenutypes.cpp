#include "platform/dbusmenutypes.h"

#include <QDBusMetaType>

bool operator==(const DBusMenuLayoutItem &a, const DBusMenuLayoutItem &b)
{
    return a.id == b.id && a.properties == b.properties && a.children == b.children;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItem &item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItem &item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuItemKeys &keys)
{
    argument.beginStructure();
    argument << keys.id << keys.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuItemKeys &keys)
{
    argument.beginStructure();
    argument >> keys.id >> keys.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuLayoutItem &item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.beginArray(qMetaTypeId<QDBusVariant>());
    for (const DBusMenuLayoutItem &child : item.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuLayoutItem &item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    item.children.clear();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant wrapped;
        argument >> wrapped;
        const QVariant child = wrapped.variant();
        if (child.canConvert<QDBusArgument>())
            item.children.append(qdbus_cast<DBusMenuLayoutItem>(child.value<QDBusArgument>()));
        else
            item.children.append(child.value<DBusMenuLayoutItem>());
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const DBusMenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.eventId << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, DBusMenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.eventId >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

void registerDBusMenuTypes()
{
    static const bool registered = [] {
        qDBusRegisterMetaType<DBusMenuItem>();
        qDBusRegisterMetaType<DBusMenuItemList>();
        qDBusRegisterMetaType<DBusMenuItemKeys>();
        qDBusRegisterMetaType<DBusMenuItemKeysList>();
        qDBusRegisterMetaType<DBusMenuLayoutItem>();
        qDBusRegisterMetaType<DBusMenuEvent>();
        qDBusRegisterMetaType<DBusMenuEventList>();
        qDBusRegisterMetaType<DBusMenuShortcut>();
        qDBusRegisterMetaType<QList<int>>();
        // Signals and slots name the lists by their aliases.
        qRegisterMetaType<DBusMenuItemList>("DBusMenuItemList");
        qRegisterMetaType<DBusMenuItemKeysList>("DBusMenuItemKeysList");
        qRegisterMetaType<DBusMenuEventList>("DBusMenuEventList");
        return true;
    }();
    Q_UNUSED(registered);
}
