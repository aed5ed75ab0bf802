#pragma once

#include "platform/windows/listed_windows.h"
#include "ports/window_elements.h"

namespace tavrin {

/// Applications and windows as elements, answered from the listing. The element of a listed window is known
/// by its number.
class WindowSystemElements final : public WindowElements {
public:
    explicit WindowSystemElements(ListedWindows& windows) : windows_(windows) {}

    AXElement systemWideElement() override;
    AXElement applicationElement(ProcessID pid,
                                 const std::optional<std::string>& bundleIdentifier = {}) override;
    std::optional<AXElement> listedWindowElement(ProcessID pid, std::int64_t number) override;
    std::expected<AXValue, AXError> attribute(const AXElement& element, AXAttribute attribute) override;
    std::vector<AXFrameResult> setFrames(std::span<const AXFrame> frames) override;

private:
    struct SystemReference;
    struct ApplicationReference;
    struct WindowReference;

    static AXElement elementOf(const DesktopWindow& window);
    std::expected<AXValue, AXError> systemAttribute(AXAttribute attribute);
    std::expected<AXValue, AXError> applicationAttribute(const ApplicationReference& application,
                                                         AXAttribute attribute);
    std::expected<AXValue, AXError> windowAttribute(const WindowReference& reference, AXAttribute attribute);

    ListedWindows& windows_;
};

} // namespace tavrin
