#pragma once

#include "records/accessibility_permission_state.h"

namespace tavrin {

/// Tells whether windows of other applications may be read and moved.
class AccessibilityPermissionServicing {
public:
    virtual ~AccessibilityPermissionServicing() = default;

    /// The state now, without asking the user; never `unknown`.
    virtual AccessibilityPermissionState currentState() = 0;

    /// Has the desktop ask the user if the program is not trusted yet, then tells the state.
    virtual AccessibilityPermissionState requestAccess() = 0;

    /// As `requestAccess`, but never asks the user.
    virtual AccessibilityPermissionState recheckAccess() = 0;
};

} // namespace tavrin
