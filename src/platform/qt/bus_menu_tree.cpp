#include "platform/qt/bus_menu_tree.h"

#include "platform/qt/menu_text.h"

#include <QDBusMetaType>

#include <utility>

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
    qDBusRegisterMetaType<BusMenuEvents>();
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

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuEvents& value) {
    return argument << value.events;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuEvents& value) {
    value.events.clear();
    argument.beginArray();
    while (!argument.atEnd() && value.events.size() < BusMenuEvents::most)
        argument >> value.events.emplaceBack();
    argument.endArray();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const BusMenuRemovedProperties& value) {
    return writeStructure(argument, value.id, value.names);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusMenuRemovedProperties& value) {
    return readStructure(argument, value.id, value.names);
}

void BusMenuTree::replace(const MenuModel& menu) {
    const auto known = std::exchange(identities_, {});
    nodes_.clear();
    topLevel_ = adopt(root, menu, known);
}

std::vector<int> BusMenuTree::adopt(int parent, const std::vector<MenuItem>& items,
                                    const std::map<Identity, int>& known) {
    std::vector<int> ids;
    for (const MenuItem& item : items) {
        Identity identity{parent, item.title, item.isSeparator, item.action, item.representedObject, 0};
        while (identities_.contains(identity))
            ++std::get<5>(identity);
        const auto found = known.find(identity);
        const int id = found == known.end() ? nextId_++ : found->second;
        identities_.emplace(std::move(identity), id);

        Node node{item, adopt(id, item.submenu, known)};
        node.item.submenu.clear();
        nodes_.emplace(id, std::move(node));
        ids.push_back(id);
    }
    return ids;
}

const MenuItem* BusMenuTree::item(int id) const {
    const auto found = nodes_.find(id);
    return found == nodes_.end() ? nullptr : &found->second.item;
}

QVariantMap BusMenuTree::properties(int id, const QStringList& names) const {
    QVariantMap properties;
    const auto add = [&](const char* name, QVariant value) {
        const auto key = QString::fromLatin1(name);
        if (names.isEmpty() || names.contains(key))
            properties.insert(key, std::move(value));
    };
    const auto found = nodes_.find(id);
    if (found == nodes_.end()) {
        if (id == root)
            add("children-display", QStringLiteral("submenu"));
        return properties;
    }
    const auto& [item, children] = found->second;
    if (item.isSeparator) {
        add("type", QStringLiteral("separator"));
        return properties;
    }
    add("label", busMenuLabel(item.title));
    if (!item.isEnabled)
        add("enabled", false);
    if (!children.empty())
        add("children-display", QStringLiteral("submenu"));
    if (item.keyEquivalent)
        if (const auto shortcut = busMenuShortcut(*item.keyEquivalent, panelKeyNaming()); !shortcut.isEmpty())
            add("shortcut", QVariant::fromValue(QList<QStringList>{shortcut}));
    return properties;
}

BusMenuLayout BusMenuTree::layout(int id, int depth, const QStringList& names) const {
    BusMenuLayout layout{id, properties(id, names), {}};
    if (depth == 0)
        return layout;
    const auto found = nodes_.find(id);
    const auto& children = found == nodes_.end() ? topLevel_ : found->second.children;
    for (const int child : children)
        layout.children.append(QDBusVariant(QVariant::fromValue(this->layout(child, depth - 1, names))));
    return layout;
}

std::vector<int> BusMenuTree::ids() const {
    std::vector<int> ids;
    collectIds(topLevel_, ids);
    return ids;
}

void BusMenuTree::collectIds(const std::vector<int>& children, std::vector<int>& ids) const {
    for (const int id : children) {
        ids.push_back(id);
        collectIds(nodes_.at(id).children, ids);
    }
}

} // namespace tavrin
