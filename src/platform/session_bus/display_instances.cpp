#include "platform/session_bus/display_instances.h"

#include "platform/applications/process_facts.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QStandardPaths>

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

constexpr QLatin1String objectPath("/org/tavrin/Tavrin");

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

std::filesystem::path instanceLock(const std::string& display) {
    std::filesystem::path folder =
        QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation).toStdString();
    auto name = display;
    if (const auto colon = name.rfind(':'); colon != std::string::npos) {
        // Every screen of an X server is the same display: ":0.1" is ":0", and so is "unix:0".
        name.resize(std::min(name.find('.', colon), name.size()));
        if (name.starts_with("unix:"))
            name.erase(0, colon);
        // X displays are the same whatever folder the environment names.
        const auto own = "/run/user/" + std::to_string(::getuid());
        if (::access(own.c_str(), W_OK) == 0)
            folder = own;
    } else if (name.starts_with('/')) { // the path of a Wayland socket
        folder = std::filesystem::path(name).parent_path();
        name = std::filesystem::path(name).filename();
    }
    if (folder.empty())
        return {};
    std::ranges::replace(name, '/', '_');
    return folder / ("tavrin-" + name + ".lock");
}

DisplayInstances::DisplayInstances(BusLink& sessionBus, std::filesystem::path lockFile, ProcessID ownPID)
    : sessionBus_(sessionBus), lockFile_(std::move(lockFile)), ownPID_(ownPID),
      opened_(sessionBus.observeOpened([this] { serve(); })) {}

DisplayInstances::~DisplayInstances() {
    if (lock_ >= 0)
        ::close(lock_);
}

bool DisplayInstances::lock() {
    if (lock_ >= 0)
        return true;
    const int file = ::open(lockFile_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0)
        return true; // no other program can have it either
    if (::flock(file, LOCK_EX | LOCK_NB) != 0) {
        ::close(file);
        return false;
    }
    lock_ = file;
    ::fchmod(file, 01600); // keeps what tidies up that folder from removing it
    serve();
    return true;
}

void DisplayInstances::serve() {
    if (lock_ < 0)
        return;
    auto text = std::to_string(ownPID_) + "\n";
    if (sessionBus_.isOpen()) {
        auto bus = sessionBus_.connection();
        // Before the name is taken, so that a program that sees the name can call.
        bus.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots);
        auto request = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
        constexpr uint queueUp = 0;
        request << QString::fromLatin1(applicationName) << queueUp;
        bus.asyncCall(request);
        text += bus.baseService().toStdString() + "\n";
    }
    // Another start reads what is there; an empty file in between tells it nothing.
    if (::ftruncate(lock_, 0) != 0 || ::pwrite(lock_, text.data(), text.size(), 0) < 0)
        return;
}

DisplayInstances::Owner DisplayInstances::readOwner() const {
    QFile file(QString::fromStdString(lockFile_.string()));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    constexpr qint64 longestLine = 256;
    const ProcessID pid = file.readLine(longestLine).trimmed().toInt();
    return {pid, QString::fromLatin1(file.readLine(longestLine).trimmed())};
}

std::vector<InstanceProbe> DisplayInstances::runningInstances() {
    if (lockFile_.empty())
        return {};
    std::vector<InstanceProbe> instances;
    if (!lock())
        instances.push_back({readOwner().pid, applicationName});
    instances.push_back({ownPID_, applicationName});
    return instances;
}

void DisplayInstances::activate(ProcessID pid) {
    const auto owner = readOwner();
    if (lock_ >= 0 || owner.pid != pid || owner.busName.isEmpty() || !sessionBus_.isOpen() ||
        startedTogether(pid, ownPID_))
        return;
    auto message = QDBusMessage::createMethodCall(
        owner.busName, objectPath, QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
    message << QVariantMap();
    message.setAutoStartService(false);
    sessionBus_.connection().call(message, QDBus::Block, static_cast<int>(activationTimeout.count()));
}

void DisplayInstances::setOnActivate(std::function<void()> activated) {
    activated_ = std::move(activated);
    if (activated_ && std::exchange(isActivationPending_, false))
        activated_();
}

void DisplayInstances::Activate(const QVariantMap&) {
    if (activated_)
        activated_();
    else
        isActivationPending_ = true;
}

void DisplayInstances::Open(const QStringList&, const QVariantMap& platformData) {
    Activate(platformData);
}

void DisplayInstances::ActivateAction(const QString&, const QVariantList&, const QVariantMap& platformData) {
    Activate(platformData);
}

} // namespace tavrin
