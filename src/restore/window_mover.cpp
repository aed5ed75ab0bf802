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

WindowMoveOutcome outcome(const AXFrameResult& result, const Rect& target) {
    std::vector<std::string> failedSteps;
    if (result.position != AXError::success)
        failedSteps.push_back("position=" + axErrorName(result.position));
    if (result.size != AXError::success)
        failedSteps.push_back("size=" + axErrorName(result.size));
    if (failedSteps.empty())
        return WindowMoved{result.isTiled ? "tiled by the window manager: on its display" : ""};
    return WindowMoveFailed{
        fmt::format("AX move failed for target {}; {}", description(target), fmt::join(failedSteps, ", "))};
}

} // namespace

std::expected<AXElement, WindowMoveFailed> WindowMover::chooseElement(const WindowMove& move) {
    const auto windows = windowElements(elements_, move.pid);
    if (!windows)
        return std::unexpected(windows.error());
    std::vector<AXWindowCandidate> candidates;
    for (const AXElement& element : *windows)
        candidates.push_back(candidate(elements_, element));
    const auto chosen = chooseWindow(candidates, move.entry, move.window, frameMatchTolerance_);
    if (!chosen)
        return std::unexpected(WindowMoveFailed{selectionFailure(chosen.error(), move.entry)});
    return *chosen;
}

WindowMoveOutcome WindowMover::move(ProcessID pid, const SavedLayoutEntry& entry, const WindowInfo& window,
                                    const Rect& target) {
    const WindowMove move{pid, entry, window, target};
    return moveAll({&move, 1}).front();
}

std::vector<WindowMoveOutcome> WindowMover::moveAll(std::span<const WindowMove> moves) {
    std::vector<WindowMoveOutcome> outcomes(moves.size());
    std::vector<AXFrame> frames;
    std::vector<std::size_t> positions; // of the frames among the moves
    for (std::size_t i = 0; i < moves.size(); ++i) {
        const auto& move = moves[i];
        if (!isSaneFrame(move.target, coordinateSanityLimit_)) {
            outcomes[i] = WindowMoveFailed{"Rejected unsafe target frame " + description(move.target)};
        } else if (const auto known = elements_.listedWindowElement(move.pid, move.window.id)) {
            frames.push_back({*known, move.target});
            positions.push_back(i);
        } else if (const auto chosen = chooseElement(move); !chosen) {
            outcomes[i] = chosen.error();
        } else {
            const AXFrame frame{*chosen, move.target};
            outcomes[i] = outcome(elements_.setFrames({&frame, 1}).at(0), move.target);
        }
    }
    if (frames.empty())
        return outcomes;
    const auto results = elements_.setFrames(frames);
    for (std::size_t i = 0; i < results.size(); ++i)
        outcomes[positions[i]] = outcome(results[i], frames[i].frame);
    return outcomes;
}

} // namespace tavrin
