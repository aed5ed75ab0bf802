#include "platform/kwin/kwin_keys.h"
#include "wayland/named_keyboard.h"

#include <Qt>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

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
        EXPECT_EQ(texts(qtKeys(combo, namedKeyboard(layouts), layout, keypad)), expected) << layouts;
}

} // namespace
} // namespace tavrin
