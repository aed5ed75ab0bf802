#pragma once

#include "base/timestamp.h"
#include "base/token.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace tavrin {

/// The main thread's event loop, as far as platform layers need it.
class EventLoop {
public:
    virtual ~EventLoop() = default;

    /// `handler` is called whenever `fileDescriptor` has something to read (or its other end is gone)
    /// until the token is released. The descriptor stays the caller's and must outlive the token.
    virtual Token watchReadable(int fileDescriptor, std::function<void()> handler) = 0;
};

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

class WallClock {
public:
    virtual ~WallClock() = default;

    /// Now; may jump when the user sets the clock.
    virtual std::chrono::system_clock::time_point instant() = 0;

    /// Now as records hold it.
    Timestamp now() { return std::chrono::floor<std::chrono::seconds>(instant()); }
};

/// Whether the program stands in the task bar and the application switcher.
enum class ActivationPolicy { regular = 0, accessory = 1 };

/// The program as the desktop sees it.
class ApplicationHost {
public:
    virtual ~ApplicationHost() = default;

    virtual void setActivationPolicy(ActivationPolicy policy) = 0;

    /// Brings the program's windows in front of all others.
    virtual void activate() = 0;

    /// Ends the event loop; the process exits with status 0.
    virtual void terminate() = 0;

    /// The file of the running program; tells the user which copy is meant.
    virtual std::filesystem::path bundlePath() = 0;

    /// The version shown to the user; empty when there is none.
    virtual std::string shortVersion() = 0;
};

/// Small values that the program keeps between runs, beside its data files.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// False when values cannot be read, were lost (the file is empty or damaged), or would not last until
    /// the next run.
    virtual bool isUsable() = 0;

    /// Nothing was ever stored.
    virtual bool isEmpty() = 0;

    /// 0 when the key is absent or holds something else.
    virtual std::int64_t integer(const std::string& key) = 0;
    /// false when the key is absent or holds something else.
    virtual bool boolean(const std::string& key) = 0;

    /// Written through at once; a failure to write is not reported.
    virtual void setInteger(const std::string& key, std::int64_t value) = 0;
    virtual void setBoolean(const std::string& key, bool value) = 0;
};

} // namespace tavrin
