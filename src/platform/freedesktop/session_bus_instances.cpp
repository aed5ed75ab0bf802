#include "platform/freedesktop/session_bus_instances.h"

#include "platform/freedesktop/application_object.h"
#include "platform/freedesktop/process_facts.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

#include <algorithm>
#include <cstdint>
#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

/// One wish of the user can start the program twice: a double click, or a launcher that runs the program and
/// also calls its name, for which the bus starts it again.
bool startedTogether(ProcessID one, ProcessID other) {
    const auto first = processStartTime("/proc", one);
    const auto second = processStartTime("/proc", other);
    if (!first || !second)
        return false;
    const auto ticksApart = std::max(*first, *second) - std::min(*first, *second);
    const auto halfASecond = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK)) / 2;
    return ticksApart < halfASecond;
}

} // namespace

SessionBusInstances::SessionBusInstances(std::optional<std::string> address, ProcessID ownPID,
                                         Environment environment, std::string name)
    : address_(std::move(address)), ownPID_(ownPID), environment_(std::move(environment)),
      name_(std::move(name)) {}

SessionBusInstances::~SessionBusInstances() = default;

void SessionBusInstances::open() {
    if (std::exchange(isOpened_, true) || !address_)
        return;
    object_ = std::make_unique<ApplicationObject>(*address_);
    if (!object_->connection().isConnected()) {
        object_.reset();
        return;
    }
    // Before the name is there, so that whoever sees the name can call.
    object_->serve(QString::fromStdString(name_));
}

void SessionBusInstances::tryToOwn() {
    const auto registered = object_->connection().interface()->registerService(
        QString::fromStdString(name_), QDBusConnectionInterface::DontQueueService,
        QDBusConnectionInterface::DontAllowReplacement);
    isOwner_ = registered.isValid() && registered.value() == QDBusConnectionInterface::ServiceRegistered;
}

std::optional<ProcessID> SessionBusInstances::owner() const {
    const auto pid = object_->connection().interface()->servicePid(QString::fromStdString(name_));
    return pid.isValid() ? std::optional(static_cast<ProcessID>(pid.value())) : std::nullopt;
}

std::vector<InstanceProbe> SessionBusInstances::runningInstances() {
    open();
    if (!object_)
        return {};
    // The owner may end between the two questions; then the name is free again.
    constexpr int attempts = 3;
    std::optional<ProcessID> other;
    for (int i = 0; i < attempts && !isOwner_ && !other; ++i) {
        tryToOwn();
        if (!isOwner_)
            other = owner();
    }
    std::vector<InstanceProbe> instances;
    if (other)
        instances.push_back({*other, name_});
    instances.push_back({ownPID_, name_});
    return instances;
}

void SessionBusInstances::activate(ProcessID pid) {
    open();
    if (!object_ || isOwner_ || owner() != pid || startedTogether(pid, ownPID_))
        return;
    QVariantMap platformData;
    if (const auto token = nonEmpty(environment_, "XDG_ACTIVATION_TOKEN"))
        platformData[QStringLiteral("activation-token")] = QString::fromStdString(*token);
    if (const auto identifier = nonEmpty(environment_, "DESKTOP_STARTUP_ID"))
        platformData[QStringLiteral("desktop-startup-id")] = QString::fromStdString(*identifier);

    const auto name = QString::fromStdString(name_);
    auto message = QDBusMessage::createMethodCall(name, ApplicationObject::objectPath(name),
                                                  ApplicationObject::interface, QStringLiteral("Activate"));
    message.setArguments({platformData});
    message.setAutoStartService(false);
    object_->connection().call(message, QDBus::Block, static_cast<int>(activationTimeout.count()));
}

void SessionBusInstances::setOnActivate(std::function<void(const std::string&)> activated) {
    open();
    if (object_)
        object_->setOnActivate(std::move(activated));
}

} // namespace tavrin
