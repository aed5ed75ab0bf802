#pragma once

#include "base/record_fields.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// A set of modifier keys.
struct ModifierSet {
    std::uint64_t rawValue = 0;

    static const ModifierSet shift;
    static const ModifierSet control;
    static const ModifierSet option;
    static const ModifierSet command;
    static const ModifierSet significant; ///< all four; every other flag never takes part

    bool operator==(const ModifierSet&) const = default;
    bool contains(ModifierSet other) const { return (rawValue & other.rawValue) == other.rawValue; }
    ModifierSet operator|(ModifierSet other) const { return {rawValue | other.rawValue}; }
    ModifierSet operator&(ModifierSet other) const { return {rawValue & other.rawValue}; }
};

inline constexpr ModifierSet ModifierSet::shift{0x20000};
inline constexpr ModifierSet ModifierSet::control{0x40000};
inline constexpr ModifierSet ModifierSet::option{0x80000};
inline constexpr ModifierSet ModifierSet::command{0x100000};
inline constexpr ModifierSet ModifierSet::significant{0x1E0000};

/// A key going down.
struct KeyEvent {
    std::uint16_t keyCode = 0;       ///< virtual key code: the position of the key, whatever is printed on it
    std::uint64_t modifierFlags = 0; ///< may carry flags beyond the significant ones

    ModifierSet modifiers() const { return ModifierSet{modifierFlags} & ModifierSet::significant; }
};

/// A keyboard shortcut.
struct KeyCombo {
    std::uint16_t keyCode = 0;
    ModifierSet modifiers;

    bool operator==(const KeyCombo&) const = default;

    /// The symbols of the modifiers (control, option, shift, command) followed by the name of the key.
    std::string displayString() const;

    /// The name printed for a key code; "Key" and the number for a key that has none.
    static std::string keyName(std::uint16_t keyCode);

    bool hasControl() const { return modifiers.contains(ModifierSet::control); }

    /// The key is this one and exactly these modifiers are held; lock keys do not count.
    bool matches(const KeyEvent& event) const {
        return event.keyCode == keyCode && event.modifiers() == modifiers;
    }

    static constexpr auto fields() {
        return std::tuple{field("keyCode", &KeyCombo::keyCode), field("modifiers", &KeyCombo::modifiers)};
    }
};

/// The virtual key code (as `KeyEvent` has it) of the key with that number in the Linux input layer, which
/// X11 and Wayland keyboards use too (X11 adds 8). Absent for modifier keys, which are no presses of their
/// own, and for keys that have no virtual key code.
std::optional<std::uint16_t> virtualKeyCode(std::uint32_t evdevCode);

/// A combination that the desktop does not deliver.
struct RefusedKey {
    KeyCombo combo;
    std::string reason; ///< a sentence for the user, for example "Another program uses this combination."

    bool operator==(const RefusedKey&) const = default;
};

} // namespace tavrin

template <>
struct std::hash<tavrin::KeyCombo> {
    std::size_t operator()(const tavrin::KeyCombo& combo) const noexcept {
        return std::hash<std::uint64_t>{}(combo.modifiers.rawValue << 16 ^ combo.keyCode);
    }
};
