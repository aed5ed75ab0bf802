#pragma once

#include <functional>
#include <utility>

namespace tavrin {

/// Keeps something alive (a timer, an observer, a subscription) until it is released or destroyed. An
/// empty token holds nothing.
class [[nodiscard]] Token {
public:
    Token() = default;
    explicit Token(std::move_only_function<void()> release) : release_(std::move(release)) {}
    Token(Token&& other) noexcept : release_(std::exchange(other.release_, nullptr)) {}
    Token& operator=(Token&& other) noexcept {
        if (this != &other) {
            release();
            release_ = std::exchange(other.release_, nullptr);
        }
        return *this;
    }
    ~Token() { release(); }

    /// Ends what the token keeps; a second call does nothing.
    void release() {
        if (auto action = std::exchange(release_, nullptr))
            action();
    }

    explicit operator bool() const { return static_cast<bool>(release_); }

private:
    std::move_only_function<void()> release_;
};

/// Calls a copy of `callback`, which may destroy the object that holds it, or itself. An empty callback
/// does nothing.
template <class Callback, class... Arguments>
void callCopy(Callback callback, Arguments... arguments) {
    if (callback)
        callback(std::move(arguments)...);
}

} // namespace tavrin
