#include "platform/x11/keyboard_modifiers.h"

#include "records/key_combo.h"

#include <algorithm>

namespace tavrin {
namespace {

constexpr std::uint8_t shiftMask = 1 << 0;
constexpr std::uint8_t controlMask = 1 << 2;
constexpr std::size_t firstFreeModifier = 3;

/// The symbols of the left and the right key.
struct KeyPair {
    std::uint32_t left;
    std::uint32_t right;
};
constexpr KeyPair metaKeys{0xFFE7, 0xFFE8};
constexpr KeyPair altKeys{0xFFE9, 0xFFEA};
constexpr KeyPair superKeys{0xFFEB, 0xFFEC};
constexpr KeyPair hyperKeys{0xFFED, 0xFFEE};

std::uint8_t modifiersSetBy(const KeyPair& keys, const KeyboardModifiers::Symbols& symbols) {
    std::uint8_t mask = 0;
    for (std::size_t i = firstFreeModifier; i < symbols.size(); ++i)
        if (std::ranges::any_of(symbols[i],
                                [&](auto symbol) { return symbol == keys.left || symbol == keys.right; }))
            mask = static_cast<std::uint8_t>(mask | 1U << i);
    return mask;
}

} // namespace

KeyboardModifiers::KeyboardModifiers(const Symbols& symbols) {
    const auto meta = modifiersSetBy(metaKeys, symbols);
    const auto hyper = modifiersSetBy(hyperKeys, symbols);
    option_ = modifiersSetBy(altKeys, symbols);
    if (option_ == 0)
        option_ = meta;
    // Usual layouts put Meta with Alt and Hyper with Super; on others they stand in for a missing Super.
    command_ = modifiersSetBy(superKeys, symbols);
    if (command_ == 0)
        command_ = hyper != 0 ? hyper : meta;
    command_ = static_cast<std::uint8_t>(command_ & ~option_);
}

std::uint64_t KeyboardModifiers::flags(std::uint8_t modifiers) const {
    ModifierSet set;
    const auto add = [&](std::uint8_t mask, ModifierSet modifier) {
        if ((modifiers & mask) != 0)
            set = set | modifier;
    };
    add(shiftMask, ModifierSet::shift);
    add(controlMask, ModifierSet::control);
    add(option_, ModifierSet::option);
    add(command_, ModifierSet::command);
    return set.rawValue;
}

bool HeldKeys::press(std::uint8_t key, const DownKeys& down) {
    for (std::size_t i = 0; i < isHeld_.size(); ++i)
        if (i != key && (down[i / 8] >> i % 8 & 1) == 0)
            isHeld_[i] = false;
    const bool isNew = !isHeld_[key];
    isHeld_[key] = true;
    return isNew;
}

} // namespace tavrin
