#include "support/desktop/mouse.h"

#include <xcb/xtest.h>

namespace tavrin::desktop {

void Mouse::click(const Rect& area, Button button) {
    const auto send = [&](std::uint8_t type, std::uint8_t detail) {
        xcb_test_fake_input(x_.raw(), type, detail, XCB_CURRENT_TIME, x_.root(),
                            static_cast<std::int16_t>(area.x + area.width / 2),
                            static_cast<std::int16_t>(area.y + area.height / 2), 0);
    };
    send(XCB_MOTION_NOTIFY, 0);
    send(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    send(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
    x_.sync();
}

} // namespace tavrin::desktop
