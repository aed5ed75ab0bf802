#pragma once

#include "base/token.h"
#include "records/key_combo.h"

#include <functional>

namespace tavrin {

/// Watches key presses. Repeats of a held key are not reported; key codes are positions on the keyboard,
/// independent of its layout.
class KeyMonitors {
public:
    virtual ~KeyMonitors() = default;

    /// Presses that go to other applications, without taking them away. An empty token when the desktop
    /// does not let the program see them.
    virtual Token addGlobalMonitor(std::function<void(const KeyEvent&)> handler) = 0;

    /// Presses that go to this program's own windows. The handler returns true to consume the press.
    virtual Token addLocalMonitor(std::function<bool(const KeyEvent&)> handler) = 0;
};

} // namespace tavrin
