#include "platform/kwin/kwin_keys.h"

#include <Qt>
#include <gtest/gtest.h>

#include <cstdlib>
#include <xkbcommon/xkbcommon.h>

namespace tavrin {
namespace {

KeyboardMap keyboard(const char* layouts) {
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

std::string texts(const std::vector<int>& keys) {
    std::string all;
    for (const int key : keys)
        all += (all.empty() ? "" : " ") + keyText(key & ~Qt::KeypadModifier) +
               ((key & Qt::KeypadModifier) != 0 ? "(pad)" : "");
    return all;
}

TEST(KWinKeysTest, areWhatThePositionGivesInTheLayoutInUse) {
    constexpr std::uint16_t one = 18, two = 19, a = 0, q = 12, f5 = 96, escape = 53, pad1 = 83, padPlus = 69;
    constexpr auto c = ModifierSet::control, s = ModifierSet::shift, m = ModifierSet::command;
    struct Case {
        const char* layouts;
        std::size_t layout;
        KeyCombo combo;
        KeypadKeys keypad;
        const char* expected;
    };
    const auto plain = KeypadKeys::plain;
    for (const auto& [layouts, layout, combo, keypad, expected] : std::initializer_list<Case>{
             {"us", 0, {one, c | ModifierSet::option}, plain, "Ctrl+Alt+1"},
             {"us", 0, {a, c | s}, plain, "Ctrl+Shift+A"},
             {"us", 0, {one, c | s}, plain, "Ctrl+!"},
             {"us", 0, {f5, m | s}, plain, "Meta+Shift+F5"},
             {"us", 0, {escape, m}, plain, "Meta+Esc"},
             {"fr", 0, {one, c}, plain, "Ctrl+&"},
             {"fr", 0, {one, c | s}, plain, "Ctrl+1"},
             {"fr", 0, {two, c}, plain, "Ctrl+É"},
             {"fr", 0, {q, c}, plain, "Ctrl+A"},
             {"us,ru", 1, {a, c}, plain, "Ctrl+A"},
             {"us,ru", 1, {a, m}, plain, "Meta+A"},
             {"ru", 0, {a, c}, plain, "Ctrl+Ф"},
             {"us", 0, {pad1, c}, plain, "Ctrl+1 Ctrl+End"},
             {"us", 0, {pad1, c}, KeypadKeys::marked, "Ctrl+1(pad) Ctrl+End(pad)"},
             {"us", 0, {padPlus, c}, KeypadKeys::marked, "Ctrl++(pad)"},
             {"us", 0, {200, c}, plain, ""},
         })
        EXPECT_EQ(texts(qtKeys(combo, keyboard(layouts), layout, keypad)), expected) << layouts;
}

} // namespace
} // namespace tavrin
