#pragma once

#include "platform/freedesktop/bus_link.h"
#include "platform/freedesktop/freedesktop_system_events.h"
#include "platform/freedesktop/unlock_merger.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QVariantMap>

#include <memory>

namespace tavrin {

/// The listening half of `FreedesktopSystemEvents`, with its Qt types.
class SystemEventListener : public QObject {
    Q_OBJECT
public:
    SystemEventListener(FreedesktopSystemEvents::Configuration configuration,
                        FreedesktopSystemEvents::Handler handler);

private Q_SLOTS:
    void prepareForSleep(bool isAboutToSleep);
    void sessionLocked(const QDBusMessage& message);
    void sessionUnlocked(const QDBusMessage& message);
    void sessionChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                        const QDBusMessage& message);
    void screenSaverChanged(bool isActive, const QDBusMessage& message);

private:
    void listenToSystem(QDBusConnection bus);
    void listenToSession(QDBusConnection bus);

    /// Finds out which of logind's sessions is this one; its events count from then on.
    void findSession(const QDBusConnection& bus);
    void findDisplaySession(const QDBusConnection& bus);
    void setSession(const QString& path);

    /// Calls `answered` with the first argument of the answer, unless it is an error.
    void ask(const QDBusConnection& bus, const QDBusMessage& question,
             std::function<void(const QVariant&)> answered, std::function<void()> failed = {});

    void report(LockSource source, bool isLocked);

    FreedesktopSystemEvents::Configuration configuration_;
    FreedesktopSystemEvents::Handler handler_;
    UnlockMerger merger_;
    QString sessionPath_;
    std::unique_ptr<QDBusServiceWatcher> logindWatcher_;
    BusLink systemBus_; // last: their ends come first
    BusLink sessionBus_;
};

} // namespace tavrin
