#include "platform/x11/x11_keyboard.h"
#include "records/key_combo.h"

#include <gtest/gtest.h>

#include <string>

namespace tavrin {
namespace {

/// The names of the keys with consecutive numbers, one after the other.
std::string names(std::uint32_t firstEvdevCode, std::uint32_t lastEvdevCode) {
    std::string text;
    for (auto code = firstEvdevCode; code <= lastEvdevCode; ++code)
        text += KeyCombo::keyName(virtualKeyCode(code).value_or(999));
    return text;
}

TEST(EvdevKeyCodesTest, keysAreWhereTheirNamesSay) {
    EXPECT_EQ(names(1, 1), "Escape");
    EXPECT_EQ(names(2, 14), "1234567890-=Delete");
    EXPECT_EQ(names(15, 28), "TabQWERTYUIOP[]Return");
    EXPECT_EQ(names(30, 40), "ASDFGHJKL;'");
    EXPECT_EQ(names(43, 53), "\\ZXCVBNM,./");
    EXPECT_EQ(names(57, 57), "Space");
    EXPECT_EQ(names(59, 68), "F1F2F3F4F5F6F7F8F9F10");
    EXPECT_EQ(names(87, 88), "F11F12");
    EXPECT_EQ(names(96, 96), "Enter");
    EXPECT_EQ(names(103, 103) + names(105, 106) + names(108, 108), "↑←→↓");
    int named = 0;
    for (std::uint32_t code = 0; code < 1000; ++code)
        if (const auto key = virtualKeyCode(code); key && !KeyCombo::keyName(*key).starts_with("Key"))
            ++named;
    EXPECT_EQ(named, 68) << "and nowhere else";
}

TEST(EvdevKeyCodesTest, modifierKeysAreNoPresses) {
    for (const std::uint32_t code : {29U, 42U, 54U, 56U, 58U, 97U, 100U, 125U, 126U, 0U, 767U})
        EXPECT_EQ(virtualKeyCode(code), std::nullopt) << code;
}

TEST(KeyPositionsTest, numbersCountUnlessTheNamesContradictThem) {
    const KeyPositions nameless;
    const KeyPositions usual({{38, "AC01"}, {111, "UP"}, {113, "LEFT"}, {133, "LWIN"}});
    EXPECT_EQ(nameless.evdevCode(38), 30U);
    EXPECT_EQ(usual.evdevCode(113), 105U);
    EXPECT_EQ(usual.evdevCode(200), 192U);
    EXPECT_EQ(usual.evdevCode(7), std::nullopt);

    const KeyPositions old({{38, "AC01"}, {98, "UP"}, {100, "LEFT"}, {108, "KPEN"}, {116, "RWIN"}});
    EXPECT_EQ(old.evdevCode(38), 30U);
    EXPECT_EQ(old.evdevCode(98), 103U);
    EXPECT_EQ(old.evdevCode(100), 105U);
    EXPECT_EQ(old.evdevCode(108), 96U);
    EXPECT_EQ(old.evdevCode(116), std::nullopt); // would be an arrow by its number
}

constexpr std::uint32_t metaLeft = 0xFFE7;
constexpr std::uint32_t altLeft = 0xFFE9;
constexpr std::uint32_t altRight = 0xFFEA;
constexpr std::uint32_t superLeft = 0xFFEB;
constexpr std::uint32_t hyperLeft = 0xFFED;
constexpr std::uint32_t numLock = 0xFF7F;
constexpr std::uint32_t levelShift = 0xFE03;
constexpr std::uint32_t noSymbol = 0;

TEST(KeyboardModifiersTest, altAndSuperAreFoundByTheirKeys) {
    const auto shift = ModifierSet::shift.rawValue;
    const auto control = ModifierSet::control.rawValue;
    const auto option = ModifierSet::option.rawValue;
    const auto command = ModifierSet::command.rawValue;
    using Flags = std::array<std::uint64_t, 8>; // of each modifier on its own
    const struct {
        const char* layout;
        KeyboardModifiers::Symbols symbols;
        Flags flags;
    } cases[] = {
        {"the usual one",
         {{{}, {}, {}, {altLeft, metaLeft, altRight}, {numLock}, {}, {superLeft, hyperLeft}, {levelShift}}},
         {shift, 0, control, option, 0, 0, command, 0}},
        {"Super on Mod3, Alt on Mod5",
         {{{}, {}, {}, {numLock}, {}, {noSymbol, superLeft}, {}, {altRight}}},
         {shift, 0, control, 0, 0, command, 0, option}},
        {"Meta in place of Super",
         {{{}, {}, {}, {altLeft}, {}, {}, {metaLeft}, {}}},
         {shift, 0, control, option, 0, 0, command, 0}},
        {"Meta in place of Alt",
         {{{}, {}, {}, {metaLeft}, {}, {}, {superLeft}, {}}},
         {shift, 0, control, option, 0, 0, command, 0}},
        {"Hyper in place of Super",
         {{{}, {}, {}, {altLeft, metaLeft}, {}, {hyperLeft}, {}, {}}},
         {shift, 0, control, option, 0, command, 0, 0}},
        {"only Meta", {{{}, {}, {}, {metaLeft}, {}, {}, {}, {}}}, {shift, 0, control, option, 0, 0, 0, 0}},
        {"neither Alt nor Super", {}, {shift, 0, control, 0, 0, 0, 0, 0}},
    };
    for (const auto& test : cases) {
        const KeyboardModifiers modifiers(test.symbols);
        Flags flags{};
        for (std::size_t i = 0; i < flags.size(); ++i)
            flags[i] = modifiers.flags(static_cast<std::uint8_t>(1U << i));
        EXPECT_EQ(flags, test.flags) << test.layout;
    }
}

TEST(HeldKeysTest, onlyTheFirstPressOfAHeldKeyIsNew) {
    HeldKeys::DownKeys down{};
    const auto set = [&](std::uint8_t key, bool isDown) {
        const auto bit = static_cast<std::uint8_t>(1U << key % 8);
        down[key / 8] = static_cast<std::uint8_t>(isDown ? down[key / 8] | bit : down[key / 8] & ~bit);
    };
    HeldKeys held;
    set(27, true);
    EXPECT_TRUE(held.press(27, down));
    EXPECT_FALSE(held.press(27, down));
    held.release(27);
    EXPECT_TRUE(held.press(27, down));

    set(37, true);
    EXPECT_TRUE(held.press(37, down)); // a second key; the first one is still down
    EXPECT_FALSE(held.press(27, down));

    set(27, false); // its release never came
    held.release(37);
    EXPECT_TRUE(held.press(37, down));
    EXPECT_TRUE(held.press(27, down));
}

} // namespace
} // namespace tavrin
