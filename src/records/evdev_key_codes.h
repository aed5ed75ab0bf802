#pragma once

#include <cstdint>
#include <optional>

namespace tavrin {

/// The virtual key code (as `KeyEvent` has it) of the key with that number in the Linux input layer, which
/// X11 and Wayland keyboards use too (X11 adds 8). Absent for modifier keys, which are no presses of their
/// own, and for keys that have no virtual key code.
std::optional<std::uint16_t> virtualKeyCode(std::uint32_t evdevCode);

} // namespace tavrin
