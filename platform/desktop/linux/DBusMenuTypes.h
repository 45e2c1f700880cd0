#pragma once

#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class QDBusArgument;

namespace orvello {

/// An entry with its properties, (ia{sv}).
struct DBusMenuItem {
    int id = 0;
    QVariantMap properties;
};

/// The names of properties that went back to their defaults, (ias).
struct DBusMenuItemKeys {
    int id = 0;
    QStringList properties;
};

/// An entry with the entries below it, (ia{sv}av).
struct DBusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayout> children;
};

/// What happened to an entry on a host, (isvu).
struct DBusMenuEvent {
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemKeys& keys);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemKeys& keys);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

/// Makes the types known to QtDBus; any number of calls.
void registerDBusMenuTypes();

} // namespace orvello
