#pragma once

#include "ports/runtime.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tavrin::testing {

inline Timestamp at(std::int64_t secondsSince1970) {
    return Timestamp{std::chrono::seconds{secondsSince1970}};
}

/// Virtual time: a clock that stands still and a scheduler whose tasks run when a test lets time pass.
class FakeTime : public Scheduler, public WallClock {
public:
    std::chrono::system_clock::time_point instant() override {
        return at(1'800'000'000) + std::chrono::duration_cast<std::chrono::system_clock::duration>(elapsed_);
    }

    Token after(Seconds delay, std::function<void()> task) override {
        return add(delay, std::nullopt, std::move(task));
    }
    Token every(Seconds interval, std::function<void()> task) override {
        return add(interval, interval, std::move(task));
    }

    /// Lets time pass; every task runs at its own moment, in order.
    void pass(double seconds) {
        const Seconds end = elapsed_ + Seconds{seconds};
        while (const auto next = nextBefore(end)) {
            elapsed_ = next->due;
            if (next->interval)
                next->due += *next->interval;
            else
                std::erase(tasks_, next);
            next->task();
        }
        elapsed_ = end;
    }

    std::size_t pendingTasks() const { return tasks_.size(); }

private:
    struct Task {
        Seconds due;
        std::optional<Seconds> interval;
        std::function<void()> task;
    };

    Token add(Seconds delay, std::optional<Seconds> interval, std::function<void()> task) {
        auto entry = std::make_shared<Task>(elapsed_ + delay, interval, std::move(task));
        tasks_.push_back(entry);
        return Token([this, entry] { std::erase(tasks_, entry); });
    }

    std::shared_ptr<Task> nextBefore(Seconds end) const {
        const auto next = std::ranges::min_element(tasks_, {}, [](const auto& task) { return task->due; });
        // Sums of tenths are not exact; a hair's breadth is not "later".
        return next == tasks_.end() || (*next)->due > end + Seconds{1e-9} ? nullptr : *next;
    }

    Seconds elapsed_{0};
    std::vector<std::shared_ptr<Task>> tasks_;
};

} // namespace tavrin::testing
