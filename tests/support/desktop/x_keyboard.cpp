#include "support/desktop/x_keyboard.h"

#include <xcb/xtest.h>

namespace tavrin::desktop {

std::optional<XKeyboard::Stroke> XKeyboard::strokeFor(xcb_keysym_t symbol) {
    auto* c = x_.raw();
    const auto* setup = xcb_get_setup(c);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> map{
        xcb_get_keyboard_mapping_reply(c, xcb_get_keyboard_mapping(c, setup->min_keycode, count), nullptr)};
    if (!map)
        return std::nullopt;
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
    for (int level = 0; level < 2; ++level)
        for (int key = 0; key < count; ++key)
            if (level < map->keysyms_per_keycode && symbols[key * map->keysyms_per_keycode + level] == symbol)
                return Stroke{static_cast<xcb_keycode_t>(setup->min_keycode + key), level == 1};
    return std::nullopt;
}

void XKeyboard::send(std::uint8_t type, xcb_keycode_t code) {
    xcb_test_fake_input(x_.raw(), type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

bool XKeyboard::press(std::uint32_t symbol) {
    const auto stroke = strokeFor(symbol);
    if (!stroke)
        return false;
    if (stroke->isShifted)
        return pressWith(shiftKey, symbol);
    send(XCB_KEY_PRESS, stroke->code);
    send(XCB_KEY_RELEASE, stroke->code);
    x_.sync();
    return true;
}

bool XKeyboard::pressWith(std::vector<std::uint32_t> modifiers, std::uint32_t symbol) {
    std::vector<xcb_keycode_t> held;
    for (const auto modifier : modifiers)
        if (const auto stroke = strokeFor(modifier))
            held.push_back(stroke->code);
    const auto stroke = strokeFor(symbol);
    if (held.size() != modifiers.size() || !stroke)
        return false;
    for (const auto code : held)
        send(XCB_KEY_PRESS, code);
    send(XCB_KEY_PRESS, stroke->code);
    send(XCB_KEY_RELEASE, stroke->code);
    for (const auto code : held)
        send(XCB_KEY_RELEASE, code);
    x_.sync();
    return true;
}

} // namespace tavrin::desktop
