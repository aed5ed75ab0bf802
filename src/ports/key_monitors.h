#pragma once

#include "base/token.h"
#include "records/key_combo.h"

#include <functional>
#include <vector>

namespace tavrin {

/// Watches key presses. Repeats of a held key are not reported; key codes are positions on the keyboard,
/// independent of its layout.
class KeyMonitors {
public:
    virtual ~KeyMonitors() = default;

    /// From now on `pressed` is called for presses of exactly these combinations that go to other
    /// applications. Replaces what was watched before; an empty set ends it, and costs nothing. Where the
    /// desktop can only reserve combinations, no application gets them meanwhile, and `pressed` is called for
    /// all.
    virtual void watch(std::vector<KeyCombo> combos, std::function<void(const KeyEvent&)> pressed) = 0;

    /// Those of the watched combinations that the desktop does not deliver.
    virtual std::vector<RefusedKey> refusedKeys() = 0;

    /// `handler` is called when `refusedKeys` may answer differently, until the token is released.
    virtual Token observeRefusedKeys(std::function<void()> handler) = 0;

    /// Presses that go to this program's own windows. The handler returns true to consume the press.
    virtual Token addLocalMonitor(std::function<bool(const KeyEvent&)> handler) = 0;
};

} // namespace tavrin
