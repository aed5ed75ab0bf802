#pragma once

#include "ports/key_monitors.h"

namespace tavrin {

/// Sees no keys. A real one reports positions on the keyboard (not letters), leaves out the repeats of a
/// held key, and does not take presses away from other applications.
class UnsupportedKeyMonitors final : public KeyMonitors {
public:
    Token addGlobalMonitor(std::function<void(const KeyEvent&)>) override { return {}; }
    Token addLocalMonitor(std::function<bool(const KeyEvent&)>) override { return {}; }
};

} // namespace tavrin
