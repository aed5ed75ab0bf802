#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class X11Connection;

/// Where the keys of a keyboard are. Not read by libxkbcommon: its X11 part fetches the whole keymap for the
/// same two tables, and does not tell which keys set a modifier. The server numbers them as the input layer
/// does, plus 8, when it has real keyboards; a server for remote or virtual desktops may number all but the
/// main block otherwise, and then the names of the keys tell.
class KeyPositions {
public:
    /// The four-letter names of the keys that have one, by the server's key number.
    using Names = std::map<std::uint8_t, std::string>;

    KeyPositions() = default;
    explicit KeyPositions(const Names& names);

    /// The number of the key in the input layer; absent when the key's position is unknown.
    std::optional<std::uint32_t> evdevCode(std::uint8_t key) const;

private:
    std::optional<std::map<std::uint8_t, std::uint32_t>> renumbered_; ///< absent with the usual numbers
};

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

/// The keyboard as the server describes it now: where its keys are and what its modifiers mean.
struct X11Keyboard {
    KeyPositions positions;
    KeyboardModifiers modifiers;
};

/// One round trip; absent when the server does not answer.
std::optional<X11Keyboard> readKeyboard(X11Connection& server);

} // namespace tavrin
