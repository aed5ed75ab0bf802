#pragma once

#include "platform/x11/x11_window_manager.h"
#include "ports/window_elements.h"

namespace tavrin {

/// Trusted means: a window manager lists the windows and moves them on request. There is nothing to ask the
/// user, so the prompt is the same question.
class X11AccessibilityTrust final : public AccessibilityTrust {
public:
    explicit X11AccessibilityTrust(X11WindowManager& windowManager) : windowManager_(windowManager) {}

    bool isProcessTrusted() override { return windowManager_.isControllable(Freshness::now); }
    bool isProcessTrusted(Prompt) override { return isProcessTrusted(); }

private:
    X11WindowManager& windowManager_;
};

} // namespace tavrin
