#pragma once

#include "base/signal.h"

#include <utility>

namespace tavrin {

/// A value that tells its observers about changes. Assigning an equal value tells nobody.
template <class Value>
class Observable {
public:
    Observable() = default;
    explicit Observable(Value initial) : value_(std::move(initial)) {}

    const Value& value() const { return value_; }

    void set(Value value) {
        if (value == value_)
            return;
        value_ = std::move(value);
        changed_.emit();
    }

    /// Calls `observer` with the current value now and with every later one until the token is released.
    Token subscribe(std::function<void(const Value&)> observer) {
        observer(value_);
        return changed_.connect([this, observer = std::move(observer)] { observer(value_); });
    }

private:
    Value value_{};
    Signal<> changed_;
};

} // namespace tavrin
