#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>

namespace tavrin::desktop {

/// Stands in for logind on the private system bus: one session, in which everybody is, and what logind tells
/// of sleep and of the lock.
class LoginManager : public QDBusVirtualObject {
public:
    explicit LoginManager(QDBusConnection bus) : bus_(std::move(bus)) {}

    bool appear();
    void sleepAndWake();
    void lock() { setLocked(true); }
    void unlock() { setLocked(false); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    void setLocked(bool isLocked);

    QDBusConnection bus_;
    bool isLocked_ = false;
};

} // namespace tavrin::desktop
