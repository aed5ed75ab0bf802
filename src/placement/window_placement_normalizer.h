#pragma once

#include "records/displays.h"
#include "records/layouts.h"

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

} // namespace tavrin
