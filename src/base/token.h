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

} // namespace tavrin
