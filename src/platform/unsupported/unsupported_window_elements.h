#pragma once

#include "ports/window_elements.h"

namespace tavrin {

/// Elements without attributes: whatever is asked, the answer is that there is no permission. A real one
/// remembers in an element what it stands for, answers `invalidUIElement` once that is gone, reads and sets
/// the same rectangle, and waits only a bounded time for the desktop to carry out a change.
class UnsupportedWindowElements final : public WindowElements {
public:
    AXElement systemWideElement() override;
    AXElement applicationElement(ProcessID pid,
                                 const std::optional<std::string>& bundleIdentifier = {}) override;
    std::expected<AXValue, AXError> attribute(const AXElement& element, AXAttribute attribute) override;
    AXError setAttribute(const AXElement& element, AXAttribute attribute, const AXValue& value) override;
};

} // namespace tavrin
