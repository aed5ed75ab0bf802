#include "support/desktop/message_bus.h"

#include "support/desktop/wait.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QFile>

#include <memory>

namespace tavrin::desktop {

namespace {

constexpr auto configuration = R"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

MessageBus::~MessageBus() {
    if (!connectionName_.isEmpty())
        QDBusConnection::disconnectFromBus(connectionName_);
}

bool MessageBus::start(const QString& name, const QString& directory,
                       const QProcessEnvironment& environment) {
    QFile file(directory + "/" + name + ".conf");
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QString(configuration).arg(directory + "/" + name).toUtf8());
    file.close();
    start_ = [this, name, environment, configurationFile = file.fileName()] {
        daemon_ = std::make_unique<Process>();
        if (!daemon_->start(
                "dbus-daemon",
                {"--config-file=" + configurationFile, "--nofork", "--nopidfile", "--print-address=1"},
                environment, configurationFile + ".log", Process::Output::readHere))
            return false;
        const auto address = daemon_->readLine();
        if (!address)
            return false;
        address_ = QString::fromStdString(*address);
        if (!connectionName_.isEmpty())
            QDBusConnection::disconnectFromBus(connectionName_);
        connectionName_ = QString("harness-%1-%2").arg(name).arg(daemon_->pid());
        return QDBusConnection::connectToBus(address_, connectionName_).isConnected();
    };
    return start_();
}

void MessageBus::stop() {
    daemon_->kill();
}

QDBusMessage callAndServe(QDBusConnection connection, const QDBusMessage& call) {
    QDBusPendingCallWatcher watcher(connection.asyncCall(call));
    if (!waitUntil([&] { return watcher.isFinished(); }))
        return call.createErrorReply(QDBusError::NoReply, "no answer in time");
    return watcher.reply();
}

} // namespace tavrin::desktop
