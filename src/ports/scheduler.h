#pragma once

#include "base/timestamp.h"
#include "base/token.h"

#include <functional>

namespace tavrin {

/// Runs tasks on the main thread after a time on the monotonic clock. Releasing the token cancels the
/// task; a task is never run inside the call that schedules it. A task may release its own token: it is
/// kept until it returns.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    /// Once, after `delay`; with 0 in the next turn of the event loop.
    virtual Token after(Seconds delay, std::function<void()> task) = 0;

    /// Again and again, every `interval`, until the token is released.
    virtual Token every(Seconds interval, std::function<void()> task) = 0;
};

} // namespace tavrin
