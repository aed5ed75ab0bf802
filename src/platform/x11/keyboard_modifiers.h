#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace tavrin {

/// What the eight modifiers of the keyboard mean. Only Shift, Lock and Control have a fixed place; where
/// Alt and Super are depends on the layout.
class KeyboardModifiers {
public:
    /// The symbols of all keys that set each modifier, in the protocol's order (Shift, Lock, Control, Mod1
    /// to Mod5).
    using Symbols = std::array<std::vector<std::uint32_t>, 8>;

    KeyboardModifiers() = default;
    explicit KeyboardModifiers(const Symbols& symbols);

    /// The flags of a `KeyEvent` for the modifiers in force (a mask in the same order). Locks and level
    /// shifts give none.
    std::uint64_t flags(std::uint8_t modifiers) const;

private:
    std::uint8_t option_ = 0;
    std::uint8_t command_ = 0;
};

/// Tells new key presses from repeated ones.
class HeldKeys {
public:
    /// What the server holds to be down: one bit per key.
    using DownKeys = std::array<std::uint8_t, 32>;

    /// True for the first press since the key was let go. Keys that are up in `down` count as let go, in
    /// case their release was lost, except this one.
    bool press(std::uint8_t key, const DownKeys& down);

    void release(std::uint8_t key) { isHeld_[key] = false; }
    void clear() { isHeld_.fill(false); }

private:
    std::array<bool, 256> isHeld_{};
};

} // namespace tavrin
