#include "support/desktop/login_manager.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace tavrin::desktop {

namespace {

constexpr auto service = "org.freedesktop.login1";
constexpr auto managerPath = "/org/freedesktop/login1";
constexpr auto sessionPath = "/org/freedesktop/login1/session/_31";
constexpr auto sessionInterface = "org.freedesktop.login1.Session";

} // namespace

bool LoginManager::appear() {
    return bus_.registerVirtualObject(managerPath, this, QDBusConnection::SubPath) &&
           bus_.registerService(service);
}

bool LoginManager::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    const QString method = message.member();
    if (method == "GetSession" || method == "GetSessionByPID")
        return connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(sessionPath))));
    if (method == "GetAll")
        return connection.send(message.createReply(
            QVariantMap{{"LockedHint", isLocked_}, {"TimestampMonotonic", qulonglong(begin_.count())}}));
    return false;
}

void LoginManager::beginSession() {
    begin_ = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

void LoginManager::sleepAndWake() {
    for (const bool isAboutToSleep : {true, false}) {
        auto signal =
            QDBusMessage::createSignal(managerPath, "org.freedesktop.login1.Manager", "PrepareForSleep");
        signal << isAboutToSleep;
        bus_.send(signal);
    }
}

void LoginManager::setLocked(bool isLocked) {
    isLocked_ = isLocked;
    auto signal =
        QDBusMessage::createSignal(sessionPath, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    signal << sessionInterface << QVariantMap{{"LockedHint", isLocked}} << QStringList();
    bus_.send(signal);
}

} // namespace tavrin::desktop
