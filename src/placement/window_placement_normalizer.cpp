#include "placement/window_placement_normalizer.h"

namespace tavrin {

std::vector<DisplayPlacementInput> placementInputs(const DisplaySnapshotCollection& displays) {
    std::vector<DisplayPlacementInput> inputs;
    for (const DisplaySnapshot& display : displays.displays)
        inputs.push_back({display.stableID, display.arrangementKey(), display.visibleFrame});
    return inputs;
}

Rect frameFromFractions(const SavedLayoutFrame& fractions, const DisplayFrame& visibleFrame) {
    return {visibleFrame.minX() + fractions.x * visibleFrame.width,
            visibleFrame.minY() + fractions.y * visibleFrame.height, fractions.width * visibleFrame.width,
            fractions.height * visibleFrame.height};
}

std::optional<NormalizedWindowPlacement>
WindowPlacementNormalizer::normalize(const Rect& windowFrame,
                                     const std::vector<DisplayPlacementInput>& displays) const {
    const DisplayPlacementInput* best = nullptr;
    double bestArea = 0;
    for (const DisplayPlacementInput& display : displays) {
        if (!(display.visibleFrame.width > 0 && display.visibleFrame.height > 0))
            continue;
        const double area = overlapArea(windowFrame, display.visibleFrame);
        if (area > bestArea) {
            best = &display;
            bestArea = area;
        }
    }
    if (!best)
        return std::nullopt;
    const Rect& visible = best->visibleFrame;
    return NormalizedWindowPlacement{best->identifier(),
                                     {(windowFrame.minX() - visible.minX()) / visible.width,
                                      (windowFrame.minY() - visible.minY()) / visible.height,
                                      windowFrame.width / visible.width,
                                      windowFrame.height / visible.height}};
}

} // namespace tavrin
