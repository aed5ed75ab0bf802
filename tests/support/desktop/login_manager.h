#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>

#include <chrono>

namespace tavrin::desktop {

/// Stands in for logind on the private system bus: one session, in which everybody is, and what logind tells
/// of sleep and of the lock.
class LoginManager : public QDBusVirtualObject {
public:
    explicit LoginManager(QDBusConnection bus) : bus_(std::move(bus)) {}

    bool appear();
    /// The session begins now; before, it is as old as the computer.
    void beginSession();
    void sleepAndWake();
    void lock() { setLocked(true); }
    void unlock() { setLocked(false); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    void setLocked(bool isLocked);

    QDBusConnection bus_;
    std::chrono::microseconds begin_{1};
    bool isLocked_ = false;
};

} // namespace tavrin::desktop
