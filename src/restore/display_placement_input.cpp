#include "restore/display_placement_input.h"

namespace tavrin {

std::vector<DisplayPlacementInput> placementInputs(const DisplaySnapshotCollection& displays) {
    std::vector<DisplayPlacementInput> inputs;
    for (const DisplaySnapshot& display : displays.displays)
        inputs.push_back({display.stableID, display.arrangementKey(), display.visibleFrame});
    return inputs;
}

} // namespace tavrin
