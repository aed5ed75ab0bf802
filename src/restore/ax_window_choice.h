#pragma once

#include "ports/window_elements.h"
#include "records/layouts.h"

#include <expected>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// An element that may be the listed window.
struct AXWindowCandidate {
    AXElement element;
    std::optional<Rect> frame; ///< absent when position or size cannot be read
    std::string title;         ///< empty when it cannot be read
    std::optional<std::string> role;
    std::optional<std::string> subrole;
};

/// What a choice that failed was made from.
struct AXWindowChoiceFailure {
    std::size_t candidatesWithFrames = 0;
    std::size_t frameMatches = 0;
    std::size_t roleMatches = 0;
    std::optional<double> nearestScore; ///< absent when no candidate has a frame
};

/// The candidate that is `window`: the only one at its frame; else, among those that carry the title, the
/// one that its role tells, the one clearly nearest within 160 points, or for twins the one in the entry's
/// slot. An absent saved role or subrole agrees with any. A saved title that no candidate carries gives way
/// to the live one, and one that no candidate carries either narrows nothing. `frameMatchTolerance` in
/// points, per component.
std::expected<AXElement, AXWindowChoiceFailure> chooseWindow(const std::vector<AXWindowCandidate>& candidates,
                                                             const SavedLayoutEntry& entry,
                                                             const WindowInfo& window,
                                                             double frameMatchTolerance);

} // namespace tavrin
