#include "support/desktop/keyboard.h"

#include <xcb/xtest.h>

namespace tavrin::desktop {

std::optional<Keyboard::Stroke> Keyboard::strokeFor(xcb_keysym_t symbol) {
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

void Keyboard::send(std::uint8_t type, xcb_keycode_t code) {
    xcb_test_fake_input(x_.raw(), type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

bool Keyboard::press(xcb_keysym_t symbol) {
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

bool Keyboard::pressWith(xcb_keysym_t modifier, xcb_keysym_t symbol) {
    const auto held = strokeFor(modifier);
    const auto stroke = strokeFor(symbol);
    if (!held || !stroke)
        return false;
    send(XCB_KEY_PRESS, held->code);
    send(XCB_KEY_PRESS, stroke->code);
    send(XCB_KEY_RELEASE, stroke->code);
    send(XCB_KEY_RELEASE, held->code);
    x_.sync();
    return true;
}

bool Keyboard::type(std::string_view text) {
    for (const char character : text)
        if (!press(static_cast<unsigned char>(character))) // in ASCII the symbol is the character
            return false;
    return true;
}

} // namespace tavrin::desktop
