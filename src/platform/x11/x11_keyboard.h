#pragma once

#include "platform/x11/key_positions.h"
#include "platform/x11/keyboard_modifiers.h"
#include "platform/x11/x11_connection.h"

#include <cstdint>
#include <optional>

namespace tavrin {

/// The keyboard as the server describes it now: where its keys are and what its modifiers mean.
struct X11Keyboard {
    KeyPositions positions;
    KeyboardModifiers modifiers;
};

/// One round trip; absent when the server does not answer.
std::optional<X11Keyboard> readKeyboard(X11Connection& server);

} // namespace tavrin
