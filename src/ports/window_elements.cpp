#include "ports/window_elements.h"

namespace tavrin {

std::string axErrorName(AXError error) {
    switch (error) {
    case AXError::success:
        return "success";
    case AXError::failure:
        return "failure";
    case AXError::illegalArgument:
        return "illegalArgument";
    case AXError::invalidUIElement:
        return "invalidUIElement";
    case AXError::invalidUIElementObserver:
        return "invalidUIElementObserver";
    case AXError::cannotComplete:
        return "cannotComplete";
    case AXError::attributeUnsupported:
        return "attributeUnsupported";
    case AXError::actionUnsupported:
        return "actionUnsupported";
    case AXError::notificationUnsupported:
        return "notificationUnsupported";
    case AXError::notImplemented:
        return "notImplemented";
    case AXError::notificationAlreadyRegistered:
        return "notificationAlreadyRegistered";
    case AXError::notificationNotRegistered:
        return "notificationNotRegistered";
    case AXError::apiDisabled:
        return "apiDisabled";
    case AXError::noValue:
        return "noValue";
    case AXError::parameterizedAttributeUnsupported:
        return "parameterizedAttributeUnsupported";
    case AXError::notEnoughPrecision:
        return "notEnoughPrecision";
    }
    return "unknown(" + std::to_string(static_cast<std::int32_t>(error)) + ")";
}

} // namespace tavrin
