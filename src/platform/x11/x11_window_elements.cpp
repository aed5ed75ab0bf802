#include "platform/x11/x11_window_elements.h"

#include <cerrno>
#include <signal.h>

namespace tavrin {
namespace {

std::string subrole(WindowKind kind) {
    switch (kind) {
    case WindowKind::dialog:
        return "AXDialog";
    case WindowKind::floating:
        return "AXFloatingWindow";
    case WindowKind::standard:
    case WindowKind::desktopElement:
        break;
    }
    return "AXStandardWindow";
}

bool isRunning(ProcessID pid) {
    return pid > 0 && (kill(pid, 0) == 0 || errno != ESRCH);
}

} // namespace

struct X11WindowElements::SystemReference final : AXElementReference {};

struct X11WindowElements::ApplicationReference final : AXElementReference {
    ApplicationReference(ProcessID processID, std::optional<std::string> identifier)
        : pid(processID), bundleIdentifier(std::move(identifier)) {}

    bool owns(const X11Window& window) const {
        return window.kind != WindowKind::desktopElement && window.clues.pid == pid &&
               (!bundleIdentifier || window.identity.bundleIdentifier == bundleIdentifier);
    }

    ProcessID pid;
    std::optional<std::string> bundleIdentifier;
};

/// The process is part of it because the server gives the numbers of destroyed windows out again.
struct X11WindowElements::WindowReference final : AXElementReference {
    WindowReference(xcb_window_t window, std::optional<ProcessID> processID) : id(window), pid(processID) {}

    xcb_window_t id;
    std::optional<ProcessID> pid;
};

AXElement X11WindowElements::systemWideElement() {
    return std::make_shared<SystemReference>();
}

AXElement X11WindowElements::applicationElement(ProcessID pid,
                                                const std::optional<std::string>& bundleIdentifier) {
    return std::make_shared<ApplicationReference>(pid, bundleIdentifier);
}

AXElement X11WindowElements::elementOf(const X11Window& window) {
    return std::make_shared<WindowReference>(window.id, window.clues.pid);
}

const X11Window* X11WindowElements::find(const WindowReference& reference) const {
    const auto* window = table_.find(reference.id);
    return window && window->clues.pid == reference.pid ? window : nullptr;
}

std::expected<AXValue, AXError> X11WindowElements::attribute(const AXElement& element,
                                                             AXAttribute attribute) {
    if (!windowManager_.isControllable())
        return std::unexpected(AXError::apiDisabled);
    if (!table_.refresh(Freshness::recent))
        return std::unexpected(AXError::cannotComplete);
    if (dynamic_cast<const SystemReference*>(element.get()))
        return systemAttribute(attribute);
    if (const auto* application = dynamic_cast<const ApplicationReference*>(element.get()))
        return applicationAttribute(*application, attribute);
    if (const auto* window = dynamic_cast<const WindowReference*>(element.get()))
        return windowAttribute(*window, attribute);
    return std::unexpected(AXError::illegalArgument);
}

std::expected<AXValue, AXError> X11WindowElements::systemAttribute(AXAttribute attribute) {
    if (attribute != AXAttribute::focusedApplication)
        return std::unexpected(AXError::attributeUnsupported);
    const auto* active = table_.activeWindow();
    if (!active || !active->clues.pid)
        return std::unexpected(AXError::noValue);
    return applicationElement(*active->clues.pid, active->identity.bundleIdentifier);
}

std::expected<AXValue, AXError>
X11WindowElements::applicationAttribute(const ApplicationReference& application, AXAttribute attribute) {
    if (attribute == AXAttribute::focusedWindow) {
        const auto* active = table_.activeWindow();
        if (!active || !application.owns(*active))
            return std::unexpected(isRunning(application.pid) ? AXError::noValue : AXError::invalidUIElement);
        return elementOf(*active);
    }
    if (attribute != AXAttribute::windows)
        return std::unexpected(AXError::attributeUnsupported);
    std::vector<AXElement> windows;
    for (const auto* window : table_.windows())
        if (application.owns(*window))
            windows.push_back(elementOf(*window));
    if (windows.empty() && !isRunning(application.pid))
        return std::unexpected(AXError::invalidUIElement);
    return windows;
}

std::expected<AXValue, AXError> X11WindowElements::windowAttribute(const WindowReference& reference,
                                                                   AXAttribute attribute) {
    const auto* window = find(reference);
    if (!window)
        return std::unexpected(AXError::invalidUIElement);
    const auto frame = table_.frame(*window);
    switch (attribute) {
    case AXAttribute::title:
        return window->title;
    case AXAttribute::role:
        return std::string("AXWindow");
    case AXAttribute::subrole:
        return subrole(window->kind);
    case AXAttribute::position:
        return Point{frame.x, frame.y};
    case AXAttribute::size:
        return Size{frame.width, frame.height};
    case AXAttribute::focusedApplication:
    case AXAttribute::focusedWindow:
    case AXAttribute::windows:
        break;
    }
    return std::unexpected(AXError::attributeUnsupported);
}

AXError X11WindowElements::setAttribute(const AXElement& element, AXAttribute attribute,
                                        const AXValue& value) {
    if (!windowManager_.isControllable())
        return AXError::apiDisabled;
    const auto* reference = dynamic_cast<const WindowReference*>(element.get());
    if (!reference || (attribute != AXAttribute::position && attribute != AXAttribute::size))
        return AXError::attributeUnsupported;
    if (!table_.refresh(Freshness::recent))
        return AXError::cannotComplete;
    if (!find(*reference))
        return AXError::invalidUIElement;
    if (attribute == AXAttribute::position) {
        const auto* position = std::get_if<Point>(&value);
        return position ? mover_.setPosition(reference->id, *position) : AXError::illegalArgument;
    }
    const auto* size = std::get_if<Size>(&value);
    return size ? mover_.setSize(reference->id, *size) : AXError::illegalArgument;
}

} // namespace tavrin
