#include "platform/windows/window_system_elements.h"

namespace tavrin {
namespace {

AXError error(WindowSystemObstacle obstacle) {
    return obstacle == WindowSystemObstacle::notAnswering ? AXError::cannotComplete : AXError::apiDisabled;
}

AXFrameResult result(PlacementOutcome outcome) {
    const auto both = [](AXError error) { return AXFrameResult{.position = error, .size = error}; };
    switch (outcome) {
    case PlacementOutcome::done:
    case PlacementOutcome::adjusted:
    case PlacementOutcome::pending:
        break;
    case PlacementOutcome::tiled:
        return {.isTiled = true};
    case PlacementOutcome::timedOut:
        return both(AXError::cannotComplete);
    case PlacementOutcome::gone:
        return both(AXError::invalidUIElement);
    case PlacementOutcome::refused:
        return both(AXError::illegalArgument);
    }
    return {};
}

std::string subrole(WindowKind kind) {
    switch (kind) {
    case WindowKind::dialog:
        return "AXDialog";
    case WindowKind::floating:
        return "AXFloatingWindow";
    case WindowKind::standard:
        break;
    }
    return "AXStandardWindow";
}

} // namespace

struct WindowSystemElements::SystemReference final : AXElementReference {};

struct WindowSystemElements::ApplicationReference final : AXElementReference {
    ApplicationReference(ProcessID processID, std::optional<std::string> identifier)
        : pid(processID), bundleIdentifier(std::move(identifier)) {}

    bool owns(const ListedWindow& listed) const {
        return listed.window.application.pid == pid &&
               (!bundleIdentifier || listed.application.bundleIdentifier == bundleIdentifier);
    }

    ProcessID pid;
    std::optional<std::string> bundleIdentifier;
};

/// The process is part of it because window systems give the numbers of closed windows out again.
struct WindowSystemElements::WindowReference final : AXElementReference {
    WindowReference(WindowID window, std::optional<ProcessID> processID) : id(window), pid(processID) {}

    bool isOf(const DesktopWindow& window) const {
        return window.id == id && (!pid || !window.application.pid || window.application.pid == pid);
    }

    WindowID id;
    std::optional<ProcessID> pid;
};

AXElement WindowSystemElements::systemWideElement() {
    return std::make_shared<SystemReference>();
}

AXElement WindowSystemElements::applicationElement(ProcessID pid,
                                                   const std::optional<std::string>& bundleIdentifier) {
    return std::make_shared<ApplicationReference>(pid, bundleIdentifier);
}

std::optional<AXElement> WindowSystemElements::listedWindowElement(ProcessID pid, std::int64_t number) {
    return std::make_shared<WindowReference>(number, pid);
}

AXElement WindowSystemElements::elementOf(const DesktopWindow& window) {
    return std::make_shared<WindowReference>(window.id, window.application.pid);
}

std::expected<AXValue, AXError> WindowSystemElements::attribute(const AXElement& element,
                                                                AXAttribute attribute) {
    if (const auto windows = windows_.windows(); !windows)
        return std::unexpected(error(windows.error()));
    if (dynamic_cast<const SystemReference*>(element.get()))
        return systemAttribute(attribute);
    if (const auto* application = dynamic_cast<const ApplicationReference*>(element.get()))
        return applicationAttribute(*application, attribute);
    if (const auto* window = dynamic_cast<const WindowReference*>(element.get()))
        return windowAttribute(*window, attribute);
    return std::unexpected(AXError::illegalArgument);
}

std::expected<AXValue, AXError> WindowSystemElements::systemAttribute(AXAttribute attribute) {
    if (attribute != AXAttribute::focusedApplication)
        return std::unexpected(AXError::attributeUnsupported);
    const auto* active = windows_.active();
    if (!active || !active->window.application.pid)
        return std::unexpected(AXError::noValue);
    return applicationElement(*active->window.application.pid, active->application.bundleIdentifier);
}

std::expected<AXValue, AXError>
WindowSystemElements::applicationAttribute(const ApplicationReference& application, AXAttribute attribute) {
    if (attribute != AXAttribute::focusedWindow && attribute != AXAttribute::windows)
        return std::unexpected(AXError::attributeUnsupported);
    std::vector<AXElement> own;
    for (const auto& listed : **windows_.windows())
        if (application.owns(listed))
            own.push_back(elementOf(listed.window));
    if (own.empty())
        return std::unexpected(AXError::invalidUIElement);
    if (attribute == AXAttribute::windows)
        return own;
    const auto* active = windows_.active();
    if (!active || !application.owns(*active))
        return std::unexpected(AXError::noValue);
    return elementOf(active->window);
}

std::expected<AXValue, AXError> WindowSystemElements::windowAttribute(const WindowReference& reference,
                                                                      AXAttribute attribute) {
    const auto* listed = windows_.find(reference.id);
    if (!listed || !reference.isOf(listed->window))
        return std::unexpected(AXError::invalidUIElement);
    const auto& window = listed->window;
    switch (attribute) {
    case AXAttribute::title:
        return window.title;
    case AXAttribute::role:
        return std::string("AXWindow");
    case AXAttribute::subrole:
        return subrole(window.kind);
    case AXAttribute::position:
        return Point{window.frame.x, window.frame.y};
    case AXAttribute::size:
        return Size{window.frame.width, window.frame.height};
    case AXAttribute::focusedApplication:
    case AXAttribute::focusedWindow:
    case AXAttribute::windows:
        break;
    }
    return std::unexpected(AXError::attributeUnsupported);
}

std::vector<AXFrameResult> WindowSystemElements::setFrames(std::span<const AXFrame> frames) {
    const auto all = [&](AXError error) {
        return std::vector(frames.size(), AXFrameResult{.position = error, .size = error});
    };
    if (const auto windows = windows_.windows(); !windows)
        return all(error(windows.error()));
    auto results = all(AXError::invalidUIElement);
    std::vector<WindowPlacement> placements;
    std::vector<std::size_t> positions; // of the placements among the frames
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const auto* reference = dynamic_cast<const WindowReference*>(frames[i].element.get());
        const auto* listed = reference ? windows_.find(reference->id) : nullptr;
        if (!listed || !reference->isOf(listed->window))
            continue;
        placements.push_back({reference->id, frames[i].frame});
        positions.push_back(i);
    }
    const auto outcomes = windows_.place(std::move(placements));
    for (std::size_t i = 0; i < outcomes.size(); ++i)
        results[positions[i]] = result(outcomes[i]);
    return results;
}

} // namespace tavrin
