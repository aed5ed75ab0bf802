#pragma once

#include "support/desktop/x_connection.h"

namespace tavrin::desktop {

/// A person at the mouse.
class Mouse {
public:
    explicit Mouse(XConnection& connection) : x_(connection) {}

    enum class Button : std::uint8_t { left = 1, right = 3 };

    /// Goes to the middle of the area (root pixels) and clicks there.
    void click(const Rect& area, Button button = Button::left);

private:
    XConnection& x_;
};

} // namespace tavrin::desktop
