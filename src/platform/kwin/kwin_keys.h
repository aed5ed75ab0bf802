#pragma once

#include "platform/wayland/wayland_keyboard.h"
#include "records/key_combo.h"

#include <string>
#include <vector>

namespace tavrin {

/// How KWin reports the keys of the keypad to shortcuts.
enum class KeypadKeys {
    plain,  ///< as if they were the same keys elsewhere: 5.27
    marked, ///< with Qt's keypad modifier: 6
};

/// The keys, as Qt numbers them with their modifiers, that KWin sees when the combination is pressed: what
/// the position gives in the layout that is in use. Several where it depends on Num Lock; empty when the
/// position gives nothing.
std::vector<int> qtKeys(const KeyCombo& combo, const KeyboardMap& map, std::size_t layout, KeypadKeys keypad);

/// The same as a person reads it in Plasma, for example "Meta+F5".
std::string keyText(int key);

} // namespace tavrin
