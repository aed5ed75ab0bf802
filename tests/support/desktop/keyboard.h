#pragma once

#include "support/desktop/x_connection.h"

#include <optional>
#include <string_view>

namespace tavrin::desktop {

/// A person at the keyboard: keys go to whatever window has the focus.
class Keyboard {
public:
    explicit Keyboard(XConnection& connection) : x_(connection) {}

    /// Types printable ASCII; false, and nothing more is typed, at a character the keyboard does not have.
    bool type(std::string_view text);
    /// Presses and releases one key, by its X key symbol (such as 0xff0d for Return).
    bool press(xcb_keysym_t symbol);
    /// The same while another key, such as Control, is held.
    bool pressWith(xcb_keysym_t modifier, xcb_keysym_t symbol);

    static constexpr xcb_keysym_t returnKey = 0xff0d;
    static constexpr xcb_keysym_t escapeKey = 0xff1b;
    static constexpr xcb_keysym_t controlKey = 0xffe3;
    static constexpr xcb_keysym_t shiftKey = 0xffe1;

private:
    struct Stroke {
        xcb_keycode_t code = 0;
        bool isShifted = false;
    };

    std::optional<Stroke> strokeFor(xcb_keysym_t symbol);
    void send(std::uint8_t type, xcb_keycode_t code);

    XConnection& x_;
};

} // namespace tavrin::desktop
