#pragma once

#include "placement/window_placement_normalizer.h"
#include "records/layouts.h"

#include <vector>

namespace tavrin {

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

} // namespace tavrin
