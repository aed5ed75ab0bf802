#pragma once

#include "platform/wayland/wayland_keyboard.h"

#include <cstdlib>
#include <xkbcommon/xkbcommon.h>

namespace tavrin {

/// The keyboard with these layouts of the machine, such as "fr,ru".
inline KeyboardMap namedKeyboard(const char* layouts) {
    auto* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    const xkb_rule_names names{.rules = "evdev", .model = "pc105", .layout = layouts};
    auto* keymap = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    char* text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    auto map = KeyboardMap::parse(text);
    std::free(text);
    xkb_keymap_unref(keymap);
    xkb_context_unref(context);
    return *map;
}

} // namespace tavrin
