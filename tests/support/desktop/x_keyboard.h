#pragma once

#include "support/desktop/desktop.h"

#include <optional>

namespace tavrin::desktop {

/// Keys by XTest.
class XKeyboard : public Keyboard {
public:
    explicit XKeyboard(XConnection& connection) : x_(connection) {}

    bool press(std::uint32_t symbol) override;
    using Keyboard::pressWith;
    bool pressWith(std::vector<std::uint32_t> modifiers, std::uint32_t symbol) override;

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
