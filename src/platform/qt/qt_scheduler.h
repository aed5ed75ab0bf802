#pragma once

#include "ports/runtime.h"

#include <QObject>

namespace tavrin {

/// Timers of Qt's event loop, on the monotonic clock and exact to a millisecond. A task never runs early.
class QtScheduler final : public Scheduler {
public:
    Token after(Seconds delay, std::function<void()> task) override;
    Token every(Seconds interval, std::function<void()> task) override;

private:
    enum class Repetition { once, always };
    Token start(Seconds interval, Repetition repetition, std::function<void()> task);

    QObject timers_; ///< parent of every timer, so that none outlives the scheduler
};

} // namespace tavrin
