#pragma once

#include "ports/services.h"
#include "ports/window_elements.h"

namespace tavrin {

/// Moves listed windows through their elements. Where the platform cannot tell which element a listed window
/// is, it is chosen among those of its process by frame, role, title and, among twins, by the saved slot.
class WindowMover : public WindowMoving {
public:
    static constexpr double defaultFrameMatchTolerance = 2.0;
    static constexpr double defaultCoordinateSanityLimit = 20000.0;

    explicit WindowMover(WindowElements& elements, double frameMatchTolerance = defaultFrameMatchTolerance,
                         double coordinateSanityLimit = defaultCoordinateSanityLimit)
        : elements_(elements), frameMatchTolerance_(frameMatchTolerance),
          coordinateSanityLimit_(coordinateSanityLimit) {}

    WindowMoveOutcome move(ProcessID pid, const SavedLayoutEntry& entry, const WindowInfo& window,
                           const Rect& target) override;

    /// Windows whose elements are known go together, the others one after the other.
    std::vector<WindowMoveOutcome> moveAll(std::span<const WindowMove> moves) override;

private:
    std::expected<AXElement, WindowMoveFailed> chooseElement(const WindowMove& move);

    WindowElements& elements_;
    double frameMatchTolerance_;
    double coordinateSanityLimit_;
};

} // namespace tavrin
