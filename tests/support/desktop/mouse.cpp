#include "support/desktop/mouse.h"

#include <xcb/xtest.h>

namespace tavrin::desktop {

void Mouse::press(const Rect& area, Button button) {
    send(XCB_MOTION_NOTIFY, 0, area);
    send(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
}

void Mouse::release(Button button) {
    send(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
}

void Mouse::send(std::uint8_t type, std::uint8_t detail, const Rect& area) {
    xcb_test_fake_input(x_.raw(), type, detail, XCB_CURRENT_TIME, x_.root(),
                        static_cast<std::int16_t>(area.x + area.width / 2),
                        static_cast<std::int16_t>(area.y + area.height / 2), 0);
    x_.sync();
}

} // namespace tavrin::desktop
