#pragma once

#include "support/desktop/process.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>
#include <memory>

namespace tavrin::desktop {

/// A private D-Bus daemon on which everything is allowed and nothing is started on demand.
class MessageBus {
public:
    ~MessageBus();

    /// `name` tells the buses of one desktop apart; files go into `directory`.
    bool start(const QString& name, const QString& directory, const QProcessEnvironment& environment);

    /// The daemon dies.
    void stop();
    /// A new daemon at the old place; `connection` is another one from then on.
    bool restart() { return start_(); }

    const QString& address() const { return address_; }
    /// The harness's connection to it.
    QDBusConnection connection() const { return QDBusConnection(connectionName_); }

private:
    std::function<bool()> start_;
    std::unique_ptr<Process> daemon_;
    QString address_;
    QString connectionName_;
};

/// Calls a method and serves the event loop until the answer is in. An error message when none comes.
QDBusMessage callAndServe(QDBusConnection connection, const QDBusMessage& call);

} // namespace tavrin::desktop
