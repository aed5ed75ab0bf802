#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QVariantMap>

namespace tavrin {

/// An item with its properties: (ia{sv}).
struct BusMenuItem {
    int id = 0;
    QVariantMap properties;
};

/// An item with its properties and children: (ia{sv}av).
struct BusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children; ///< each holds a BusMenuLayout
};

/// Something the user did to an item: (isvu).
struct BusMenuEvent {
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;
};

/// What a panel reports in one message: a(isvu). A panel sends two or three; more than `most` are not read.
struct BusMenuEvents {
    static constexpr qsizetype most = 64;
    QList<BusMenuEvent> events;
};

/// An item with the names of the properties it has lost: (ias).
struct BusMenuRemovedProperties {
    int id = 0;
    QStringList names;
};

/// Makes the types above known to the bus. May be called again.
void registerBusMenuTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuItem& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuItem& value);
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuLayout& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuLayout& value);
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuEvent& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuEvent& value);
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuEvents& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuEvents& value);
QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuRemovedProperties& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuRemovedProperties& value);

} // namespace tavrin

Q_DECLARE_METATYPE(tavrin::BusMenuItem)
Q_DECLARE_METATYPE(tavrin::BusMenuLayout)
Q_DECLARE_METATYPE(tavrin::BusMenuEvent)
Q_DECLARE_METATYPE(tavrin::BusMenuEvents)
Q_DECLARE_METATYPE(tavrin::BusMenuRemovedProperties)
