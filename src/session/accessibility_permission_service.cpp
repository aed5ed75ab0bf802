#include "session/accessibility_permission_service.h"

#include "ports/window_elements.h"

namespace tavrin {

AccessibilityPermissionService::AccessibilityPermissionService(AccessibilityTrust& trust,
                                                               WindowElements& elements)
    : AccessibilityPermissionService(Checks{
          .trustedCheck = [&trust] { return trust.isProcessTrusted(); },
          .promptCheck =
              [&trust](Prompt prompt) {
                  return trust.isProcessTrusted(prompt == Prompt::show
                                                    ? AccessibilityTrust::Prompt::show
                                                    : AccessibilityTrust::Prompt::suppress);
              },
          .probeCheck = [&elements] { return canReadFocusedWindow(elements); },
      }) {}

AccessibilityPermissionState AccessibilityPermissionService::currentState() {
    return stateWith(checks_.trustedCheck());
}

AccessibilityPermissionState AccessibilityPermissionService::requestAccess() {
    return stateWith(checks_.promptCheck(Prompt::show));
}

AccessibilityPermissionState AccessibilityPermissionService::recheckAccess() {
    return stateWith(checks_.promptCheck(Prompt::suppress));
}

AccessibilityPermissionState AccessibilityPermissionService::stateWith(bool isTrusted) {
    return isTrusted || checks_.probeCheck() ? AccessibilityPermissionState::granted
                                             : AccessibilityPermissionState::denied;
}

bool canReadFocusedWindow(WindowElements& elements) {
    const auto application =
        readAttribute<AXElement>(elements, elements.systemWideElement(), AXAttribute::focusedApplication);
    if (!application || !*application)
        return false;
    const auto focusedWindow = elements.attribute(*application, AXAttribute::focusedWindow);
    if (focusedWindow && !std::holds_alternative<std::monostate>(*focusedWindow))
        return true;
    const auto windows = readAttribute<std::vector<AXElement>>(elements, *application, AXAttribute::windows);
    return windows && !windows->empty();
}

} // namespace tavrin
