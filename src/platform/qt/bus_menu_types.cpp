#include "platform/qt/bus_menu_types.h"

#include <QDBusMetaType>

namespace tavrin {
namespace {

template <class... Values>
QDBusArgument& writeStructure(QDBusArgument& argument, const Values&... values) {
    argument.beginStructure();
    (argument << ... << values);
    argument.endStructure();
    return argument;
}

template <class... Values>
const QDBusArgument& readStructure(const QDBusArgument& argument, Values&... values) {
    argument.beginStructure();
    (argument >> ... >> values);
    argument.endStructure();
    return argument;
}

} // namespace

void registerBusMenuTypes() {
    qDBusRegisterMetaType<BusMenuItem>();
    qDBusRegisterMetaType<QList<BusMenuItem>>();
    qDBusRegisterMetaType<BusMenuLayout>();
    qDBusRegisterMetaType<BusMenuEvent>();
    qDBusRegisterMetaType<QList<BusMenuEvent>>();
    qDBusRegisterMetaType<BusMenuRemovedProperties>();
    qDBusRegisterMetaType<QList<BusMenuRemovedProperties>>();
    qDBusRegisterMetaType<QList<QStringList>>();
    qDBusRegisterMetaType<QList<QDBusVariant>>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuItem& value) {
    return writeStructure(argument, value.id, value.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuItem& value) {
    return readStructure(argument, value.id, value.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuLayout& value) {
    return writeStructure(argument, value.id, value.properties, value.children);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuLayout& value) {
    return readStructure(argument, value.id, value.properties, value.children);
}

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuEvent& value) {
    return writeStructure(argument, value.id, value.event, value.data, value.timestamp);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuEvent& value) {
    return readStructure(argument, value.id, value.event, value.data, value.timestamp);
}

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuRemovedProperties& value) {
    return writeStructure(argument, value.id, value.names);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuRemovedProperties& value) {
    return readStructure(argument, value.id, value.names);
}

} // namespace tavrin
