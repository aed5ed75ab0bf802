#pragma once

#include "records/displays.h"
#include "records/layouts.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A display as a place for windows.
struct DisplayPlacementInput {
    std::optional<std::string> stableID;
    std::string fallbackID; ///< the arrangement key
    DisplayFrame visibleFrame;

    bool operator==(const DisplayPlacementInput&) const = default;

    std::string identifier() const { return stableID.value_or(fallbackID); }

    /// Whether a saved display identifier means this display.
    bool isCalled(const std::string& displayIdentifier) const {
        return stableID == displayIdentifier || fallbackID == displayIdentifier;
    }
};

/// The displays of a snapshot as places, in its order.
std::vector<DisplayPlacementInput> placementInputs(const DisplaySnapshotCollection& displays);

/// A window's frame as fractions of the display it lies on.
struct NormalizedWindowPlacement {
    std::string displayIdentifier;
    SavedLayoutFrame normalizedFrame;

    bool operator==(const NormalizedWindowPlacement&) const = default;
};

/// Where fractions of a visible frame lie; the inverse of normalizing.
Rect frameFromFractions(const SavedLayoutFrame& fractions, const DisplayFrame& visibleFrame);

/// Decides on which display a window lies.
class WindowPlacementNormalizer {
public:
    /// The display with the largest overlap, the earlier one of equals; absent when the window overlaps no
    /// display with an area. The window frame (top-left origin) and the visible frames (bottom-left origin)
    /// are used as they are: restoring uses the same mix, so a round trip is exact.
    std::optional<NormalizedWindowPlacement>
    normalize(const Rect& windowFrame, const std::vector<DisplayPlacementInput>& displays) const;
};

/// A saved display and the current one that takes its windows.
struct RemappedDisplay {
    SavedDisplay saved;
    DisplayPlacementInput target;

    bool operator==(const RemappedDisplay&) const = default;
};

/// Maps each saved display to a current one.
struct DisplayRemapping {
    std::vector<RemappedDisplay> perSaved; ///< in the order in which the displays were saved
    DisplayPlacementInput fallbackTarget;  ///< the largest current display, for every other window
    bool isExact = false;                  ///< every saved display was found by identity

    bool operator==(const DisplayRemapping&) const = default;

    /// The display that the entry's window was on; null when it is unknown. Of several with its identifier
    /// (equal models without serial numbers) the one on which the entry's fractions give its frame.
    const RemappedDisplay* displayOf(const SavedLayoutEntry& entry) const;
};

/// Pairs the displays of a layout with the current ones.
class DisplayRemapper {
public:
    /// First by identity, then by similar area and place; what is left over goes to the largest display.
    /// Several displays of one identity are told apart by similar area and place. Without displays the
    /// fallback is empty.
    DisplayRemapping remap(const std::vector<SavedDisplay>& savedDisplays,
                           const std::vector<DisplayPlacementInput>& currentDisplays) const;
};

/// The smallest and the largest size, in points, that a window is given.
struct SizeClamps {
    Size minSize;
    Size maxSize;

    bool operator==(const SizeClamps&) const = default;

    static constexpr SizeClamps standard() { return {{200, 150}, {6000, 4000}}; }
};

/// Turns a saved entry back into a frame on the current displays.
struct WindowPlacementTranslator {
    SizeClamps clamps = SizeClamps::standard();

    /// Where the entry's window belongs now, in the space of the entry's saved frame: exactly there on a
    /// display that is as it was when the layout was saved. Elsewhere the frame lies inside its display: the
    /// display's size wins over the minimum, the maximum size over both, and the right and bottom edges over
    /// the left and top. An entry without fractions, or on a display without an area, keeps its saved frame
    /// as it is.
    Rect targetFrame(const SavedLayoutEntry& entry, const DisplayRemapping& remapping) const;
};

/// The candidate whose frame is nearest to a given one.
struct NearestFrame {
    std::size_t position = 0; ///< in the list of candidates
    double distance = 0;      ///< by `frameDistance`, in points
    bool isClear = false;     ///< the second nearest is at least 24 points farther, or there is none
};

/// Of equally near candidates the earlier one; absent when there is no candidate. `frameOf` gives a
/// candidate's frame in the space of `frame`.
template <class Candidates, class FrameOf>
std::optional<NearestFrame> nearestFrame(const Candidates& candidates, const Rect& frame, FrameOf frameOf) {
    constexpr double clearMargin = 24.0;
    std::optional<NearestFrame> nearest;
    double second = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const double distance = frameDistance(frameOf(candidates[i]), frame);
        if (!nearest || distance < nearest->distance) {
            if (nearest)
                second = nearest->distance;
            nearest = NearestFrame{i, distance};
        } else if (distance < second) {
            second = distance;
        }
    }
    if (nearest)
        nearest->isClear = second - nearest->distance >= clearMargin;
    return nearest;
}

} // namespace tavrin
