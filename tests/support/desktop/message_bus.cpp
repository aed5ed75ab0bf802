#include "support/desktop/message_bus.h"

#include "support/desktop/wait.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QFile>

namespace tavrin::desktop {

namespace {

constexpr auto configuration = R"(<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
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
    const QString configurationFile = directory + "/" + name + ".conf";
    QFile file(configurationFile);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QString(configuration).arg(directory).toUtf8());
    file.close();
    if (!daemon_.start("dbus-daemon",
                       {"--config-file=" + configurationFile, "--nofork", "--nopidfile", "--print-address=1"},
                       environment, directory + "/" + name + ".log", Process::Output::readHere))
        return false;
    const auto address = daemon_.readLine();
    if (!address)
        return false;
    address_ = QString::fromStdString(*address);
    connectionName_ = "harness-" + name;
    return QDBusConnection::connectToBus(address_, connectionName_).isConnected();
}

QDBusMessage callAndServe(QDBusConnection connection, const QDBusMessage& call) {
    QDBusPendingCallWatcher watcher(connection.asyncCall(call));
    if (!waitUntil([&] { return watcher.isFinished(); }))
        return call.createErrorReply(QDBusError::NoReply, "no answer in time");
    return watcher.reply();
}

} // namespace tavrin::desktop
