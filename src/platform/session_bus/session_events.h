#pragma once

#include "platform/session_bus/bus_link.h"
#include "ports/session.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tavrin {

/// Who tells about locking and unlocking. Several tell about the same one.
enum class LockSource {
    sessionBegin,   ///< the session itself: it has just begun
    sessionHint,    ///< the session's own state
    sessionRequest, ///< the request to lock or unlock that the session got
    freedesktopScreenSaver,
    gnomeScreenSaver,
    cinnamonScreenSaver,
    mateScreenSaver,
    xfceScreenSaver,
};

/// Makes one unlock of what several sources say:
/// - After a lock from any source the first unlock from any source counts. The unlocks of the other sources
///   that had told of that lock belong to it, however late they come, unless a new lock comes first.
/// - An unlock without a lock before it counts as well, since some sources do not tell of locks.
/// - Whatever comes within `window` after an unlock that counted belongs to that one: sources may tell of
///   the lock so late that its end is already known.
class UnlockMerger {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::milliseconds window{2000};

    void locked(LockSource source) { locked_.insert(source); }

    /// True when this is a new unlock.
    bool unlocked(LockSource source, TimePoint now);

    /// The source is gone and will not tell of the end of its lock.
    void forget(LockSource source) { locked_.erase(source); }

    /// The screen is locked. A request to lock is not enough: not every desktop has a program that does it.
    bool isLocked() const;

private:
    std::set<LockSource> locked_;   ///< told of the lock that has not ended yet
    std::set<LockSource> expected_; ///< told of the lock that has ended, not yet of its end
    std::optional<TimePoint> counted_;
};

/// Tells when the computer woke (`didWake`) and when the user unlocked the screen or logged in
/// (`screenIsUnlocked`), as logind and the screen savers say it on the message buses; the other events come
/// from elsewhere. A start within a minute of the session's begin is a login. A signal counts only from the
/// owner of its service's name. Missing buses and services are normal: their events do not come until they
/// appear.
class SessionEvents : public QObject {
    Q_OBJECT
public:
    using Handler = std::function<void(SystemEvent)>;

    /// `sessionID` is the session's name for logind; without it logind is asked which session this process
    /// is in. `handler` is called from the event loop. The links must outlive this object.
    SessionEvents(BusLink& systemBus, BusLink& sessionBus, std::optional<std::string> sessionID,
                  Handler handler);

    bool isScreenLocked() const { return merger_.isLocked(); }

private Q_SLOTS:
    void prepareForSleep(bool isAboutToSleep);
    void sessionLocked(const QDBusMessage& message);
    void sessionUnlocked(const QDBusMessage& message);
    void sessionChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                        const QDBusMessage& message);
    void screenSaverChanged(bool isActive, const QDBusMessage& message);

private:
    void listenToSystem();
    void listenToSession();

    /// Finds out which of logind's sessions is this one; its events count from then on.
    void findSession();
    void findDisplaySession();
    void setSession(const QString& path);
    void readSession(const QVariantMap& properties);

    /// Calls `answered` with the first argument of the answer, unless it is an error.
    void ask(const QDBusMessage& question, std::function<void(const QVariant&)> answered,
             std::function<void()> failed = {});

    void report(LockSource source, bool isLocked);

    BusLink& systemBus_;
    BusLink& sessionBus_;
    std::optional<std::string> sessionID_;
    Handler handler_;
    UnlockMerger merger_;
    QString sessionPath_;
    bool isBeginKnown_ = false; ///< whether this start was the login has been decided
    std::unique_ptr<QDBusServiceWatcher> logindWatcher_;
    std::unique_ptr<QDBusServiceWatcher> screenSaverWatcher_;
    std::vector<Token> tokens_;
};

} // namespace tavrin
