#pragma once

#include <chrono>
#include <optional>
#include <set>

namespace tavrin {

/// Who tells about locking and unlocking. Several tell about the same one.
enum class LockSource {
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

    void locked(LockSource source);

    /// True when this is a new unlock.
    bool unlocked(LockSource source, TimePoint now);

private:
    std::set<LockSource> locked_;   ///< told of the lock that has not ended yet
    std::set<LockSource> expected_; ///< told of the lock that has ended, not yet of its end
    std::optional<TimePoint> counted_;
};

} // namespace tavrin
