#pragma once

#include "ports/window_elements.h"

namespace tavrin {

/// Never trusted. A real one says yes only when windows of all applications can be read and moved; seeing
/// a part of them is a no.
class UnsupportedAccessibilityTrust final : public AccessibilityTrust {
public:
    bool isProcessTrusted() override { return false; }
    bool isProcessTrusted(Prompt) override { return false; }
};

} // namespace tavrin
