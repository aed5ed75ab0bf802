#pragma once

#include "../posix/temporary_directory.h"
#include "qt_event_loop.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>

#include <csignal>
#include <functional>
#include <map>
#include <string>
#include <sys/prctl.h>
#include <vector>

namespace tavrin {

/// A message bus of the test's own, on which nothing is started automatically.
class PrivateBus {
public:
    PrivateBus() {
        directory_.write("bus.conf", "<busconfig><type>session</type><listen>" + address() +
                                         "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                                         "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
                                         "<allow own=\"*\"/></policy></busconfig>");
        // No bus stays behind, not even when the test crashes.
        daemon_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        daemon_.start("dbus-daemon",
                      {"--nofork", "--nosyslog", "--print-address=1",
                       "--config-file=" + QString::fromStdString((directory_.path() / "bus.conf"))});
        if (!daemon_.waitForReadyRead(10'000)) // it prints the address when it is ready
            qFatal("dbus-daemon does not start");
    }
    ~PrivateBus() {
        daemon_.kill();
        daemon_.waitForFinished();
    }

    std::string address() const { return "unix:path=" + (directory_.path() / "bus").string(); }

private:
    TemporaryDirectory directory_;
    QProcess daemon_;
};

/// A program on a bus that owns a name, sends signals and answers calls. The test's event loop drives it.
class StandInService : public QDBusVirtualObject {
public:
    using Answer = std::function<QVariantList(const QDBusMessage&)>;

    StandInService(const PrivateBus& bus, const std::string& name)
        : connection_(
              QDBusConnection::connectToBus(QString::fromStdString(bus.address()), connectionName())) {
        connection_.registerVirtualObject("/", this, QDBusConnection::SubPath);
        if (!name.empty() && !connection_.registerService(QString::fromStdString(name)))
            qFatal("the name is taken");
    }
    ~StandInService() override { QDBusConnection::disconnectFromBus(connectionName()); }

    /// Sends a signal; it has reached the bus when this returns.
    void emitSignal(const char* path, const char* interface, const char* name, const QVariantList& arguments,
                    const QString& destination = {}) {
        auto message = destination.isEmpty()
                           ? QDBusMessage::createSignal(path, interface, name)
                           : QDBusMessage::createTargetedSignal(destination, path, interface, name);
        message.setArguments(arguments);
        connection_.send(message);
        connection_.interface()->isServiceRegistered("org.freedesktop.DBus"); // a round trip
    }

    /// How calls of a method are answered; an unknown method is an error.
    std::map<QString, Answer> answers;
    std::vector<QDBusMessage> calls;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls.push_back(message);
        const auto answer = answers.find(message.member());
        if (answer == answers.end())
            return false;
        return connection.send(message.createReply(answer->second(message)));
    }

    QDBusConnection& connection() { return connection_; }

private:
    QString connectionName() const {
        return QString::asprintf("stand-in-%p", static_cast<const void*>(this));
    }

    QDBusConnection connection_;
};

} // namespace tavrin
