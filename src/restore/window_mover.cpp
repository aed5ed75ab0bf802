#include "restore/window_mover.h"

#include "restore/ax_window_choice.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>

namespace tavrin {
namespace {

std::string description(const Rect& frame) {
    return fmt::format("(x={}, y={}, width={}, height={})", frame.x, frame.y, frame.width, frame.height);
}

const char* valueTypeName(const AXValue& value) {
    static constexpr std::array names = {"none", "boolean", "string", "point", "size", "element", "list"};
    static_assert(std::variant_size_v<AXValue> == names.size());
    return names[value.index()];
}

AXWindowCandidate candidate(WindowElements& elements, const AXElement& element) {
    AXWindowCandidate candidate{.element = element};
    const auto position = readAttribute<Point>(elements, element, AXAttribute::position);
    const auto size = readAttribute<Size>(elements, element, AXAttribute::size);
    if (position && size)
        candidate.frame = Rect{position->x, position->y, size->width, size->height};
    candidate.title = readAttribute<std::string>(elements, element, AXAttribute::title).value_or("");
    candidate.role = readAttribute<std::string>(elements, element, AXAttribute::role);
    candidate.subrole = readAttribute<std::string>(elements, element, AXAttribute::subrole);
    return candidate;
}

std::expected<std::vector<AXElement>, WindowMoveFailed> windowElements(WindowElements& elements,
                                                                       ProcessID pid) {
    const auto failed = [](std::string message) {
        return std::unexpected(WindowMoveFailed{std::move(message)});
    };
    const auto windows = elements.attribute(elements.applicationElement(pid), AXAttribute::windows);
    if (!windows)
        return failed(fmt::format("{} for pid {}; result={}",
                                  windows.error() == AXError::apiDisabled
                                      ? "Accessibility access is disabled for Tavrin"
                                      : "AX window list unavailable",
                                  pid, axErrorName(windows.error())));
    const auto* list = std::get_if<std::vector<AXElement>>(&*windows);
    if (!list)
        return failed(
            fmt::format("AX window list unavailable for pid {}; unexpectedValue=not a list; valueType={}",
                        pid, valueTypeName(*windows)));
    if (list->empty())
        return failed(fmt::format("AX window list empty for pid {}; result=success", pid));
    return *list;
}

std::string selectionFailure(const AXWindowChoiceFailure& failure, const SavedLayoutEntry& entry) {
    return fmt::format(
        "AX target selection failed; candidatesWithFrames={}; frameMatches={}; roleMatches={}; "
        "nearestScore={}; savedRole={}; savedSubrole={}",
        failure.candidatesWithFrames, failure.frameMatches, failure.roleMatches,
        failure.nearestScore ? fmt::format("{}", *failure.nearestScore) : "none",
        entry.windowRole.value_or("none"), entry.windowSubrole.value_or("none"));
}

} // namespace

WindowMoveOutcome WindowMover::move(ProcessID pid, const SavedLayoutEntry& entry, const WindowInfo& window,
                                    const Rect& target) {
    if (!isSaneFrame(target, coordinateSanityLimit_))
        return WindowMoveFailed{"Rejected unsafe target frame " + description(target)};
    const auto windows = windowElements(elements_, pid);
    if (!windows)
        return windows.error();
    std::vector<AXWindowCandidate> candidates;
    for (const AXElement& element : *windows)
        candidates.push_back(candidate(elements_, element));
    const auto chosen = chooseWindow(candidates, entry, window, frameMatchTolerance_);
    if (!chosen)
        return WindowMoveFailed{selectionFailure(chosen.error(), entry)};

    const AXError position =
        elements_.setAttribute(*chosen, AXAttribute::position, Point{target.x, target.y});
    const AXError size =
        elements_.setAttribute(*chosen, AXAttribute::size, Size{target.width, target.height});
    std::vector<std::string> failedSteps;
    if (position != AXError::success)
        failedSteps.push_back("position=" + axErrorName(position));
    if (size != AXError::success)
        failedSteps.push_back("size=" + axErrorName(size));
    if (failedSteps.empty())
        return WindowMoved{};
    return WindowMoveFailed{
        fmt::format("AX move failed for target {}; {}", description(target), fmt::join(failedSteps, ", "))};
}

} // namespace tavrin
