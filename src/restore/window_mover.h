#pragma once

#include "ports/services.h"
#include "ports/window_elements.h"

namespace tavrin {

/// Moves a listed window through the elements of its process. The window list and the elements share no
/// identities, so the element is chosen by frame, role, title and, among twins, by the saved slot.
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

private:
    WindowElements& elements_;
    double frameMatchTolerance_;
    double coordinateSanityLimit_;
};

} // namespace tavrin
