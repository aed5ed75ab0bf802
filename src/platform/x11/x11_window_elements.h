#pragma once

#include "platform/x11/x11_window_mover.h"
#include "ports/window_elements.h"

namespace tavrin {

/// Applications and windows as elements, answered from the mirror of the client windows.
class X11WindowElements final : public WindowElements {
public:
    X11WindowElements(X11WindowTable& table, X11WindowManager& windowManager, X11WindowMover& mover)
        : table_(table), windowManager_(windowManager), mover_(mover) {}

    AXElement systemWideElement() override;
    AXElement applicationElement(ProcessID pid,
                                 const std::optional<std::string>& bundleIdentifier = {}) override;
    std::expected<AXValue, AXError> attribute(const AXElement& element, AXAttribute attribute) override;
    AXError setAttribute(const AXElement& element, AXAttribute attribute, const AXValue& value) override;

private:
    struct SystemReference;
    struct ApplicationReference;
    struct WindowReference;

    static AXElement elementOf(const X11Window& window);
    const X11Window* find(const WindowReference& reference) const;
    std::expected<AXValue, AXError> systemAttribute(AXAttribute attribute);
    std::expected<AXValue, AXError> applicationAttribute(const ApplicationReference& application,
                                                         AXAttribute attribute);
    std::expected<AXValue, AXError> windowAttribute(const WindowReference& reference, AXAttribute attribute);

    X11WindowTable& table_;
    X11WindowManager& windowManager_;
    X11WindowMover& mover_;
};

} // namespace tavrin
