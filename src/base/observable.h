#pragma once

#include "base/signal.h"

#include <utility>

namespace tavrin {

/// A value that notifies its observers of changes. Assigning an equal value notifies nobody.
template <class Value>
class Observable {
public:
    Observable() = default;
    explicit Observable(Value initial) : value_(std::move(initial)) {}

    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    const Value& value() const { return value_; }

    void set(Value value) {
        if (value == value_)
            return;
        value_ = std::move(value);
        changed_.emit();
    }

    /// Calls `observer` with the current value now and with every later one until the token is released.
    Token subscribe(std::function<void(const Value&)> observer) {
        // An observer may set the value anew, so it gets a value of its own.
        const auto tell = [this, observer = std::move(observer)] { observer(Value(value_)); };
        tell();
        return changed_.connect(tell);
    }

private:
    Value value_{};
    Signal<> changed_;
};

} // namespace tavrin
