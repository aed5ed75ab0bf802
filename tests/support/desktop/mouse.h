#pragma once

#include "support/desktop/x_connection.h"

namespace tavrin::desktop {

/// A person at the mouse.
class Mouse {
public:
    explicit Mouse(XConnection& connection) : x_(connection) {}

    enum class Button : std::uint8_t { left = 1, right = 3 };

    /// Goes to the middle of the area (root pixels) and presses the button there.
    void press(const Rect& area, Button button = Button::left);
    void release(Button button = Button::left);
    void click(const Rect& area, Button button = Button::left) {
        press(area, button);
        release(button);
    }

private:
    void send(std::uint8_t type, std::uint8_t detail, const Rect& area = {});

    XConnection& x_;
};

} // namespace tavrin::desktop
