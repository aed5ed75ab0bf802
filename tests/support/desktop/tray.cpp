#include "support/desktop/tray.h"

#include "support/desktop/message_bus.h"
#include "support/desktop/wait.h"

#include <QCryptographicHash>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusVariant>

namespace tavrin::desktop {

namespace {

constexpr auto watcherService = "org.kde.StatusNotifierWatcher";
constexpr auto watcherPath = "/StatusNotifierWatcher";
constexpr auto itemInterface = "org.kde.StatusNotifierItem";
constexpr auto menuInterface = "com.canonical.dbusmenu";

std::string titleFrom(const QString& label) {
    // An underscore marks the access key of the next letter; two stand for one.
    QString title;
    for (qsizetype index = 0; index < label.size(); ++index) {
        if (label[index] == '_' && ++index == label.size())
            break;
        title += label[index];
    }
    return title.toStdString();
}

std::string shortcutFrom(const QVariant& value) {
    const auto combinations = qdbus_cast<QList<QStringList>>(value);
    if (combinations.isEmpty())
        return {};
    auto keys = combinations.first();
    for (auto& key : keys)
        if (key == "comma") // sent as a word or as the character, shown as the character
            key = ",";
    return keys.join('+').toStdString();
}

// One (ia{sv}av) structure.
TrayMenuItem itemFrom(const QDBusArgument& argument) {
    TrayMenuItem item;
    QVariantMap properties;
    QVariantList children;
    argument.beginStructure();
    argument >> item.id >> properties >> children;
    argument.endStructure();
    item.isSeparator = properties.value("type").toString() == "separator";
    item.isEnabled = properties.value("enabled", true).toBool();
    item.title = titleFrom(properties.value("label").toString());
    item.shortcut = shortcutFrom(properties.value("shortcut"));
    for (const QVariant& child : children) {
        const auto nested = child.value<QDBusArgument>();
        TrayMenuItem read = itemFrom(nested);
        item.children.push_back(std::move(read));
    }
    if (!properties.value("visible", true).toBool())
        item.title = "(hidden) " + item.title;
    return item;
}

const TrayMenuItem* find(const std::vector<TrayMenuItem>& items, const std::vector<std::string>& path,
                         std::size_t depth = 0) {
    for (const auto& item : items) {
        if (item.title != path[depth] || item.isSeparator)
            continue;
        if (depth + 1 == path.size())
            return item.isEnabled ? &item : nullptr;
        return find(item.children, path, depth + 1);
    }
    return nullptr;
}

} // namespace

std::string describe(const std::vector<TrayMenuItem>& items, int depth) {
    std::string text;
    for (const auto& item : items) {
        text += std::string(static_cast<std::size_t>(depth) * 4, ' ');
        if (item.isSeparator)
            text += "---";
        else
            text += (item.isEnabled ? "* " : "") + item.title;
        if (!item.shortcut.empty())
            text += " [" + item.shortcut + "]";
        if (!item.children.empty())
            text += " >";
        text += "\n" + describe(item.children, depth + 1);
    }
    return text;
}

Tray::Tray(QDBusConnection bus) : bus_(std::move(bus)) {
    qDBusRegisterMetaType<QList<QStringList>>();
    departures_.setConnection(bus_);
    departures_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&departures_, &QDBusServiceWatcher::serviceUnregistered, this, &Tray::forget);
}

bool Tray::appear() {
    return bus_.registerObject(watcherPath, this, QDBusConnection::ExportAllContents) &&
           bus_.registerService(watcherService);
}

void Tray::disappear() {
    bus_.unregisterService(watcherService);
    bus_.unregisterObject(watcherPath);
    forget(service_);
}

QStringList Tray::registeredItems() const {
    return service_.isEmpty() ? QStringList() : QStringList(service_ + path_);
}

void Tray::RegisterStatusNotifierItem(const QString& item) {
    // Some programs send their bus name, some the path of the item on the connection that calls.
    const bool isPath = item.startsWith('/');
    service_ = isPath ? message().service() : item;
    path_ = isPath ? item : "/StatusNotifierItem";
    departures_.addWatchedService(service_);
    bus_.connect(service_, path_, itemInterface, "NewIcon", this, SLOT(noteNewIcon()));
    bus_.connect(service_, QString(), menuInterface, "LayoutUpdated", this, SLOT(noteNewMenu()));
    Q_EMIT StatusNotifierItemRegistered(service_ + path_);
    // A program that left before the bus knew of the watch is never reported.
    if (!bus_.interface()->isServiceRegistered(service_))
        forget(service_);
}

void Tray::forget(const QString& service) {
    if (service.isEmpty() || service != service_)
        return;
    bus_.disconnect(service_, path_, itemInterface, "NewIcon", this, SLOT(noteNewIcon()));
    bus_.disconnect(service_, QString(), menuInterface, "LayoutUpdated", this, SLOT(noteNewMenu()));
    departures_.removeWatchedService(service_);
    service_.clear();
    path_.clear();
    Q_EMIT StatusNotifierItemUnregistered(service);
}

bool Tray::waitForItem() {
    return waitUntil([this] { return hasItem(); });
}

QVariant Tray::property(const QString& name) const {
    auto call = QDBusMessage::createMethodCall(service_, path_, "org.freedesktop.DBus.Properties", "Get");
    call << itemInterface << name;
    const auto reply = callAndServe(bus_, call);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().first().value<QDBusVariant>().variant();
}

std::string Tray::toolTip() const {
    const auto argument = property("ToolTip").value<QDBusArgument>();
    if (argument.currentSignature() != "(sa(iiay)ss)")
        return {};
    QString iconName, title, text;
    argument.beginStructure();
    argument >> iconName;
    argument.beginArray();
    while (!argument.atEnd())
        argument.asVariant();
    argument.endArray();
    argument >> title >> text;
    argument.endStructure();
    return title.toStdString();
}

std::string Tray::picture() const {
    // A change that is announced while the answer is on its way makes the answer stale.
    std::string drawn;
    int changes = 0;
    do {
        changes = iconChanges_;
        drawn = readPicture();
    } while (changes != iconChanges_);
    return drawn;
}

std::string Tray::readPicture() const {
    QCryptographicHash pixels(QCryptographicHash::Md5);
    const auto argument = property("IconPixmap").value<QDBusArgument>();
    if (argument.currentType() == QDBusArgument::ArrayType) {
        argument.beginArray();
        while (!argument.atEnd()) {
            int width = 0, height = 0;
            QByteArray data;
            argument.beginStructure();
            argument >> width >> height >> data;
            argument.endStructure();
            pixels.addData(data);
        }
        argument.endArray();
    }
    return (property("IconName").toString() + ":" + pixels.result().toHex()).toStdString();
}

QDBusMessage Tray::menuCall(const QString& method, const QVariantList& arguments) const {
    const auto menuPath = property("Menu").value<QDBusObjectPath>().path();
    auto call = QDBusMessage::createMethodCall(service_, menuPath, menuInterface, method);
    call.setArguments(arguments);
    return callAndServe(bus_, call);
}

std::optional<std::vector<TrayMenuItem>> Tray::openMenu() {
    menuCall("AboutToShow", {0});
    return readMenu();
}

std::optional<std::vector<TrayMenuItem>> Tray::readMenu() {
    const auto reply = menuCall("GetLayout", {0, -1, QStringList()});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 2)
        return std::nullopt;
    return itemFrom(reply.arguments().at(1).value<QDBusArgument>()).children;
}

bool Tray::choose(const std::vector<std::string>& path) {
    const auto items = openMenu();
    const auto* item = items && !path.empty() ? find(*items, path) : nullptr;
    if (!item)
        return false;
    const auto reply = menuCall("Event", {item->id, "clicked", QVariant::fromValue(QDBusVariant("")), 0U});
    return reply.type() == QDBusMessage::ReplyMessage;
}

} // namespace tavrin::desktop
