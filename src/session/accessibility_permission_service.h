#pragma once

#include "ports/services.h"

#include <functional>

namespace tavrin {

class AccessibilityTrust;
class WindowElements;

/// Asks the desktop whether the program is trusted. A "no" is checked against what really works, since a
/// desktop may still say no when the windows of other applications can in fact be read.
class AccessibilityPermissionService : public AccessibilityPermissionServicing {
public:
    enum class Prompt { show, suppress };

    struct Checks {
        std::function<bool()> trustedCheck;
        std::function<bool(Prompt)> promptCheck;
        std::function<bool()> probeCheck;
    };

    explicit AccessibilityPermissionService(Checks checks) : checks_(std::move(checks)) {}

    /// The checks that ask the desktop. Both collaborators must outlive the service.
    AccessibilityPermissionService(AccessibilityTrust& trust, WindowElements& elements);

    AccessibilityPermissionState currentState() override;
    AccessibilityPermissionState requestAccess() override;
    AccessibilityPermissionState recheckAccess() override;

private:
    AccessibilityPermissionState stateWith(bool isTrusted);

    Checks checks_;
};

/// True when the focused application shows a window: reading windows works, whatever the trust query says.
bool canReadFocusedWindow(WindowElements& elements);

} // namespace tavrin
