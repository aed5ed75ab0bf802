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

} // namespace tavrin
