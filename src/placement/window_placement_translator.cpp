#include "placement/window_placement_translator.h"

#include "placement/window_placement_normalizer.h"

#include <algorithm>

namespace tavrin {
namespace {

const DisplayPlacementInput& targetDisplay(const SavedLayoutEntry& entry, const DisplayRemapping& remapping) {
    if (entry.displayIdentifier)
        if (const auto found = remapping.perSaved.find(*entry.displayIdentifier);
            found != remapping.perSaved.end())
            return found->second;
    return remapping.fallbackTarget;
}

} // namespace

Rect WindowPlacementTranslator::targetFrame(const SavedLayoutEntry& entry,
                                            const DisplayRemapping& remapping) const {
    if (!entry.normalizedFrame)
        return entry.frame;
    const Rect& visible = targetDisplay(entry, remapping).visibleFrame;
    if (!(visible.width > 0 && visible.height > 0))
        return entry.frame;
    const Rect wanted = frameFromFractions(*entry.normalizedFrame, visible);
    Rect target;
    target.width =
        std::min({std::max(wanted.width, clamps.minSize.width), visible.width, clamps.maxSize.width});
    target.height =
        std::min({std::max(wanted.height, clamps.minSize.height), visible.height, clamps.maxSize.height});
    target.x = std::min(std::max(wanted.x, visible.minX()), visible.maxX() - target.width);
    target.y = std::min(std::max(wanted.y, visible.minY()), visible.maxY() - target.height);
    return target;
}

} // namespace tavrin
