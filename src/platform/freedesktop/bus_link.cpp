#include "platform/freedesktop/bus_link.h"

#include <utility>

namespace tavrin {

BusLink::BusLink(std::optional<std::string> address, Seconds retryInterval,
                 std::function<void(QDBusConnection)> opened)
    : address_(QString::fromStdString(address.value_or(""))), opened_(std::move(opened)) {
    retry_.setSingleShot(true);
    retry_.setInterval(std::chrono::duration_cast<std::chrono::milliseconds>(retryInterval));
    connect(&retry_, &QTimer::timeout, this, &BusLink::open);
}

BusLink::~BusLink() {
    QDBusConnection::disconnectFromBus(connectionName());
}

/// Every attempt has its own name: the closed connection of the last one would be found again otherwise.
QString BusLink::connectionName() const {
    return QString::asprintf("tavrin-%p-%u", static_cast<const void*>(this), attempt_);
}

void BusLink::open() {
    if (address_.isEmpty())
        return;
    QDBusConnection::disconnectFromBus(connectionName());
    ++attempt_;
    auto connection = QDBusConnection::connectToBus(address_, connectionName());
    if (!connection.isConnected()) {
        retry_.start();
        return;
    }
    connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                       QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                       SLOT(closed()));
    opened_(connection);
}

void BusLink::closed() {
    retry_.start();
}

} // namespace tavrin
