#pragma once

#include "placement/window_placement_normalizer.h"
#include "records/layouts.h"

#include <map>
#include <string>
#include <vector>

namespace tavrin {

/// Which display of now takes the windows of which saved display.
struct DisplayRemapping {
    std::map<std::string, DisplayPlacementInput> perSaved; ///< by saved display identifier
    DisplayPlacementInput fallbackTarget; ///< the largest display of now, for every other window
    bool isExact = false;                 ///< every saved display was found by identity

    bool operator==(const DisplayRemapping&) const = default;
};

/// Pairs the displays of a layout with the displays of now.
class DisplayRemapper {
public:
    /// First by identity, then by similar area and place; what is left over goes to the largest display.
    /// Without displays the fallback is empty.
    DisplayRemapping remap(const std::vector<SavedDisplay>& savedDisplays,
                           const std::vector<DisplayPlacementInput>& currentDisplays) const;
};

} // namespace tavrin
