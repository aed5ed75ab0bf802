#include "records/key_combo.h"

#include <array>
#include <map>

namespace tavrin {

namespace {

const std::map<std::uint16_t, const char*>& keyNames() {
    static const std::map<std::uint16_t, const char*> names = {
        {0, "A"},     {1, "S"},       {2, "D"},       {3, "F"},      {4, "H"},      {5, "G"},
        {6, "Z"},     {7, "X"},       {8, "C"},       {9, "V"},      {11, "B"},     {12, "Q"},
        {13, "W"},    {14, "E"},      {15, "R"},      {16, "Y"},     {17, "T"},     {31, "O"},
        {32, "U"},    {34, "I"},      {35, "P"},      {37, "L"},     {38, "J"},     {40, "K"},
        {45, "N"},    {46, "M"},      {18, "1"},      {19, "2"},     {20, "3"},     {21, "4"},
        {22, "6"},    {23, "5"},      {25, "9"},      {26, "7"},     {28, "8"},     {29, "0"},
        {24, "="},    {27, "-"},      {30, "]"},      {33, "["},     {39, "'"},     {41, ";"},
        {42, "\\"},   {43, ","},      {44, "/"},      {47, "."},     {49, "Space"}, {36, "Return"},
        {48, "Tab"},  {51, "Delete"}, {53, "Escape"}, {76, "Enter"}, {123, "←"},    {124, "→"},
        {125, "↓"},   {126, "↑"},     {122, "F1"},    {120, "F2"},   {99, "F3"},    {118, "F4"},
        {96, "F5"},   {97, "F6"},     {98, "F7"},     {100, "F8"},   {101, "F9"},   {109, "F10"},
        {103, "F11"}, {111, "F12"}};
    return names;
}

} // namespace

std::string KeyCombo::displayString() const {
    static constexpr std::array symbols = {
        std::pair{ModifierSet::control, "⌃"}, std::pair{ModifierSet::option, "⌥"},
        std::pair{ModifierSet::shift, "⇧"}, std::pair{ModifierSet::command, "⌘"}};
    std::string text;
    for (const auto& [modifier, symbol] : symbols)
        if (modifiers.contains(modifier))
            text += symbol;
    return text + keyName(keyCode);
}

std::string KeyCombo::keyName(std::uint16_t keyCode) {
    const auto found = keyNames().find(keyCode);
    return found == keyNames().end() ? "Key" + std::to_string(keyCode) : found->second;
}

namespace {

struct Key {
    std::uint8_t evdevCode;
    std::uint8_t virtualKeyCode;
};

constexpr Key keys[] = {
    // Escape and the digits.
    {1, 53},
    {2, 18},
    {3, 19},
    {4, 20},
    {5, 21},
    {6, 23},
    {7, 22},
    {8, 26},
    {9, 28},
    {10, 25},
    {11, 29},
    {12, 27},
    {13, 24},
    // Backspace, tab and the row of Q.
    {14, 51},
    {15, 48},
    {16, 12},
    {17, 13},
    {18, 14},
    {19, 15},
    {20, 17},
    {21, 16},
    {22, 32},
    {23, 34},
    {24, 31},
    {25, 35},
    {26, 33},
    {27, 30},
    {28, 36},
    // The row of A.
    {30, 0},
    {31, 1},
    {32, 2},
    {33, 3},
    {34, 5},
    {35, 4},
    {36, 38},
    {37, 40},
    {38, 37},
    {39, 41},
    {40, 39},
    {41, 50},
    // Backslash and the row of Z.
    {43, 42},
    {44, 6},
    {45, 7},
    {46, 8},
    {47, 9},
    {48, 11},
    {49, 45},
    {50, 46},
    {51, 43},
    {52, 47},
    {53, 44},
    // Space.
    {57, 49},
    // F1 to F12.
    {59, 122},
    {60, 120},
    {61, 99},
    {62, 118},
    {63, 96},
    {64, 97},
    {65, 98},
    {66, 100},
    {67, 101},
    {68, 109},
    {87, 103},
    {88, 111},
    // F13 to F20.
    {183, 105},
    {184, 107},
    {185, 113},
    {186, 106},
    {187, 64},
    {188, 79},
    {189, 80},
    {190, 90},
    // Print, scroll lock and pause stand where F13 to F15 are elsewhere.
    {99, 105},
    {70, 107},
    {119, 113},
    // The keypad; num lock stands where clear is.
    {69, 71},
    {98, 75},
    {55, 67},
    {74, 78},
    {71, 89},
    {72, 91},
    {73, 92},
    {78, 69},
    {75, 86},
    {76, 87},
    {77, 88},
    {79, 83},
    {80, 84},
    {81, 85},
    {96, 76},
    {82, 82},
    {83, 65},
    {117, 81},
    {121, 95},
    // The editing block; insert stands where help is.
    {110, 114},
    {138, 114},
    {102, 115},
    {104, 116},
    {111, 117},
    {107, 119},
    {109, 121},
    // The arrows.
    {105, 123},
    {106, 124},
    {108, 125},
    {103, 126},
    // The key between left shift and Z; menu.
    {86, 10},
    {127, 110},
    {139, 110},
    // Japanese and Korean keys.
    {89, 94},
    {124, 93},
    {95, 95},
    {92, 104},
    {93, 104},
    {122, 104},
    {94, 102},
    {123, 102},
    // Sound.
    {113, 74},
    {114, 73},
    {115, 72}};

constexpr std::uint8_t none = 0xFF;

constexpr auto table = [] {
    std::array<std::uint8_t, 256> codes{};
    codes.fill(none);
    for (const auto& key : keys)
        codes[key.evdevCode] = key.virtualKeyCode;
    return codes;
}();

} // namespace

std::optional<std::uint16_t> virtualKeyCode(std::uint32_t evdevCode) {
    if (evdevCode >= table.size() || table[evdevCode] == none)
        return std::nullopt;
    return table[evdevCode];
}

} // namespace tavrin
