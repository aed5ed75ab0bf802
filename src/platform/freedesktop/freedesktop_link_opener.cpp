#include "platform/freedesktop/freedesktop_link_opener.h"

#include "platform/freedesktop/program_search.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QProcess>
#include <QUrl>

#include <fcntl.h>
#include <functional>
#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

namespace fs = std::filesystem;

QString text(const fs::path& path) {
    return QString::fromStdString(path.string());
}

} // namespace

/// The session bus as far as it is needed here.
class FreedesktopLinkOpener::Bus {
public:
    explicit Bus(const std::optional<std::string>& address)
        : connection_(QDBusConnection::connectToBus(QString::fromStdString(address.value_or("")), name())) {}
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus() { QDBusConnection::disconnectFromBus(name()); }

    /// The service runs or would be started by a call.
    bool offers(const QString& service) const {
        if (!connection_.isConnected())
            return false;
        auto* bus = connection_.interface();
        return bus->isServiceRegistered(service).value() ||
               bus->activatableServiceNames().value().contains(service);
    }

    /// Sends the call and returns at once; `failed` is called later should the answer be an error.
    void call(const QDBusMessage& message, std::function<void()> failed) {
        auto* watcher = new QDBusPendingCallWatcher(connection_.asyncCall(message), &receiver_);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &receiver_,
                         [watcher, failed = std::move(failed)] {
                             watcher->deleteLater();
                             if (watcher->isError())
                                 failed();
                         });
    }

private:
    QString name() const { return QString::asprintf("tavrin-%p", static_cast<const void*>(this)); }

    QDBusConnection connection_;
    QObject receiver_;
};

FreedesktopLinkOpener::FreedesktopLinkOpener(fs::path helpPage, std::optional<std::string> sessionBus,
                                             Environment environment)
    : helpPage_(std::move(helpPage)), sessionBus_(std::move(sessionBus)),
      environment_(std::move(environment)) {}

FreedesktopLinkOpener::~FreedesktopLinkOpener() = default;

FreedesktopLinkOpener::Bus& FreedesktopLinkOpener::bus() {
    if (!bus_)
        bus_ = std::make_unique<Bus>(sessionBus_);
    return *bus_;
}

bool FreedesktopLinkOpener::openAccessibilitySettings() {
    std::error_code error;
    if (!helpPage_.is_absolute() || !fs::is_regular_file(helpPage_, error))
        return false;
    return openWithProgram(helpPage_) || openWithPortal(helpPage_, Kind::file);
}

bool FreedesktopLinkOpener::openFolder(const fs::path& folder) {
    std::error_code error;
    if (!folder.is_absolute() || !fs::is_directory(folder, error))
        return false;
    return openWithFileManager(folder) || openWithProgram(folder) || openWithPortal(folder, Kind::folder);
}

bool FreedesktopLinkOpener::openWithProgram(const fs::path& path) const {
    const auto program = findProgram("xdg-open", environment_);
    if (!program)
        return false;
    QProcess process;
    process.setProgram(text(*program));
    process.setArguments({text(path)});
    process.setWorkingDirectory(QStringLiteral("/"));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

bool FreedesktopLinkOpener::openWithPortal(const fs::path& path, Kind kind) {
    const auto portal = QStringLiteral("org.freedesktop.portal.Desktop");
    if (!bus().offers(portal))
        return false;
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    auto message = QDBusMessage::createMethodCall(portal, QStringLiteral("/org/freedesktop/portal/desktop"),
                                                  QStringLiteral("org.freedesktop.portal.OpenURI"),
                                                  kind == Kind::folder ? QStringLiteral("OpenDirectory")
                                                                       : QStringLiteral("OpenFile"));
    const QString noParentWindow;
    message.setArguments(
        {noParentWindow, QVariant::fromValue(QDBusUnixFileDescriptor(descriptor)), QVariantMap()});
    ::close(descriptor); // the message has a copy
    bus().call(message, [] {});
    return true;
}

bool FreedesktopLinkOpener::openWithFileManager(const fs::path& folder) {
    const auto fileManager = QStringLiteral("org.freedesktop.FileManager1");
    if (!bus().offers(fileManager))
        return false;
    auto message =
        QDBusMessage::createMethodCall(fileManager, QStringLiteral("/org/freedesktop/FileManager1"),
                                       fileManager, QStringLiteral("ShowFolders"));
    const auto uri = QUrl::fromLocalFile(text(folder)).toString(QUrl::FullyEncoded);
    const QString noStartupID;
    message.setArguments({QStringList{uri}, noStartupID});
    bus().call(message, [this, folder] {
        if (!openWithProgram(folder))
            openWithPortal(folder, Kind::folder);
    });
    return true;
}

} // namespace tavrin
