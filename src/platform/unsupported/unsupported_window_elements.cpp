#include "platform/unsupported/unsupported_window_elements.h"

namespace tavrin {

AXElement UnsupportedWindowElements::systemWideElement() {
    return std::make_shared<const AXElementReference>();
}

AXElement UnsupportedWindowElements::applicationElement(ProcessID, const std::optional<std::string>&) {
    return std::make_shared<const AXElementReference>();
}

std::expected<AXValue, AXError> UnsupportedWindowElements::attribute(const AXElement&, AXAttribute) {
    return std::unexpected(AXError::apiDisabled);
}

AXError UnsupportedWindowElements::setAttribute(const AXElement&, AXAttribute, const AXValue&) {
    return AXError::apiDisabled;
}

} // namespace tavrin
