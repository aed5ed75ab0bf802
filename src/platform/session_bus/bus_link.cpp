#include "platform/session_bus/bus_link.h"

#include "platform/applications/environment.h"

#include <QSocketNotifier>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

constexpr milliseconds lastRetry{6400};

std::string socketAddress(const std::string& path) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_/.\\*";
    std::string address = "unix:path=";
    for (const char c : path)
        address += plain.find(c) != std::string_view::npos
                       ? std::string(1, c)
                       : fmt::format("%{:02x}", static_cast<unsigned char>(c));
    return address;
}

/// The name of the local socket that an address leads to, in the kernel's form: a path, or a name behind a
/// zero byte. Of several addresses the first counts.
std::optional<std::string> socketName(const std::string& address) {
    const auto first = address.substr(0, address.find(';'));
    constexpr std::string_view transport = "unix:";
    if (!first.starts_with(transport))
        return std::nullopt;
    for (const auto& part : QString::fromStdString(first.substr(transport.size())).split(',')) {
        const auto value = QByteArray::fromPercentEncoding(part.section('=', 1).toUtf8()).toStdString();
        if (part.startsWith(QLatin1String("path=")))
            return value;
        if (part.startsWith(QLatin1String("abstract=")))
            return std::string(1, '\0') + value;
        if (part == QLatin1String("runtime=yes"))
            if (const auto directory = environmentVariable("XDG_RUNTIME_DIR"))
                return *directory + "/bus";
    }
    return std::nullopt;
}

/// The first of the addresses without the mark of the one daemon that had it: the next one is welcome too.
std::string placeOf(const std::string& address) {
    QStringList parts = QString::fromStdString(address.substr(0, address.find(';'))).split(',');
    parts.removeIf([](const QString& part) { return part.startsWith(QLatin1String("guid=")); });
    return parts.join(',').toStdString();
}

/// The call of org.freedesktop.DBus.Hello as it travels, little-endian.
std::string helloCall() {
    const auto number = [](std::size_t value) { return std::string{static_cast<char>(value), 0, 0, 0}; };
    const auto aligned = [](std::string bytes) {
        bytes.resize((bytes.size() + 7) / 8 * 8);
        return bytes;
    };
    std::string fields;
    const auto add = [&](char code, char type, std::string_view value) {
        fields = aligned(fields) + std::string{code, 1, type, 0} + number(value.size()) + std::string(value) +
                 '\0';
    };
    add(1, 'o', "/org/freedesktop/DBus");
    add(2, 's', "org.freedesktop.DBus");
    add(3, 's', "Hello");
    add(6, 's', "org.freedesktop.DBus");
    return std::string{'l', 1, 0, 1} + number(0) + number(1) + number(fields.size()) + aligned(fields);
}

/// The user's number as text, each digit in hexadecimal.
std::string greeting() {
    std::string user;
    for (const char digit : std::to_string(::geteuid()))
        user += fmt::format("{:02x}", digit);
    return std::string(1, '\0') + "AUTH EXTERNAL " + user + "\r\nBEGIN\r\n" + helloCall();
}

/// The nearest folder above `path` that is there.
fs::path existingFolder(fs::path path) {
    std::error_code error;
    do
        path = path.parent_path();
    while (path.has_relative_path() && !fs::is_directory(path, error));
    return path;
}

} // namespace

BusAddresses busAddresses() {
    BusAddresses addresses{environmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                           environmentVariable("DBUS_SYSTEM_BUS_ADDRESS")};
    if (!addresses.session)
        if (const auto directory = environmentVariable("XDG_RUNTIME_DIR"))
            addresses.session = socketAddress(*directory + "/bus");
    if (!addresses.system)
        addresses.system = socketAddress("/run/dbus/system_bus_socket");
    return addresses;
}

BusProbe::BusProbe(const std::string& address) {
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    const auto name = socketName(address);
    if (!name || name->empty() || name->size() >= sizeof place.sun_path) {
        state_ = State::refused;
        return;
    }
    name->copy(place.sun_path, name->size());
    const bool isPath = name->front() != '\0';
    const auto length = offsetof(sockaddr_un, sun_path) + name->size() + (isPath ? 1 : 0);
    descriptor_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const auto words = greeting();
    if (descriptor_ < 0 ||
        ::connect(descriptor_, reinterpret_cast<const sockaddr*>(&place), static_cast<socklen_t>(length)) !=
            0 ||
        ::send(descriptor_, words.data(), words.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(words.size()))
        state_ = State::refused;
}

BusProbe::~BusProbe() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

BusProbe::State BusProbe::state(milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (state_ == State::waiting) {
        const auto left =
            std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        pollfd waiting{descriptor_, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(std::max<long>(left, 0)));
        if (ready == 0 || (ready < 0 && left <= 0))
            break;
        if (ready > 0)
            read();
    }
    return state_;
}

void BusProbe::read() {
    constexpr std::size_t longestAnswer = 4096;
    std::array<char, 512> bytes;
    const auto count = ::recv(descriptor_, bytes.data(), bytes.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count > 0)
        answer_.append(bytes.data(), static_cast<std::size_t>(count));
    const auto end = answer_.find("\r\n");
    // The answer to the greeting is a line, the one to the call a message.
    if (answer_.starts_with("OK") && end != std::string::npos && answer_.size() > end + 2)
        state_ = State::answered;
    else if (count <= 0 || answer_.size() > longestAnswer ||
             (end != std::string::npos && !answer_.starts_with("OK")))
        state_ = State::refused;
}

BusLink::BusLink(std::optional<std::string> address) : address_(placeOf(address.value_or(""))) {
    retry_.setSingleShot(true);
    connect(&retry_, &QTimer::timeout, this, [this] { follow({}); });
    connect(&folders_, &QFileSystemWatcher::directoryChanged, this, &BusLink::socketMayHaveChanged);
}

BusLink::~BusLink() {
    QDBusConnection::disconnectFromBus(name_);
}

void BusLink::open(milliseconds patience) {
    if (!isOpen_ && !address_.empty())
        follow(patience);
}

void BusLink::follow(milliseconds patience) {
    answer_.reset();
    probe_ = std::make_unique<BusProbe>(address_);
    switch (probe_->state(patience)) {
    case BusProbe::State::answered:
        return connectTo();
    case BusProbe::State::refused:
        return waitForSocket();
    case BusProbe::State::waiting:
        answer_ = std::make_unique<QSocketNotifier>(probe_->descriptor(), QSocketNotifier::Read);
        connect(answer_.get(), &QSocketNotifier::activated, this, [this] {
            const auto state = probe_->state();
            if (state == BusProbe::State::waiting)
                return;
            answer_->setEnabled(false);
            answer_.release()->deleteLater(); // it is calling
            state == BusProbe::State::answered ? connectTo() : waitForSocket();
        });
    }
}

void BusLink::connectTo() {
    probe_.reset();
    // Every connection has a name of its own: the closed one of last time would be found again otherwise.
    static unsigned count = 0;
    QDBusConnection::disconnectFromBus(name_);
    name_ = QStringLiteral("tavrin-%1").arg(++count);
    auto connection = QDBusConnection::connectToBus(QString::fromStdString(address_), name_);
    if (!connection.isConnected())
        return waitForSocket();
    connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                       QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                       SLOT(disconnected()));
    if (!folders_.directories().isEmpty())
        folders_.removePaths(folders_.directories());
    retry_.stop();
    isOpen_ = true;
    opened_.emit();
}

void BusLink::disconnected() {
    if (!std::exchange(isOpen_, false))
        return;
    retry_.start(delay_ = firstRetry);
    closed_.emit();
}

/// A socket that is not there (any more) is noticed by its folder. One that is there and refuses belongs to
/// a bus that starts or has ended: it is tried a few times more.
void BusLink::waitForSocket() {
    probe_.reset();
    const auto name = socketName(address_);
    if (!name)
        return;
    std::error_code error;
    const bool isPath = name->starts_with('/');
    if (isPath) {
        const auto folder = QString::fromStdString(existingFolder(*name).string());
        if (!folders_.directories().contains(folder))
            folders_.addPath(folder);
    }
    if ((!isPath || fs::exists(*name, error)) && delay_ <= lastRetry) {
        retry_.start(delay_);
        delay_ *= 2;
    }
}

void BusLink::socketMayHaveChanged() {
    if (!isOpen_ && !probe_ && !retry_.isActive())
        retry_.start(delay_ = firstRetry);
}

} // namespace tavrin
