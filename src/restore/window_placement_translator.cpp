#include "restore/window_placement_translator.h"

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
    const Rect& fractions = *entry.normalizedFrame;
    Rect target;
    target.width =
        std::min(std::min(std::max(fractions.width * visible.width, clamps.minSize.width), visible.width),
                 clamps.maxSize.width);
    target.height =
        std::min(std::min(std::max(fractions.height * visible.height, clamps.minSize.height), visible.height),
                 clamps.maxSize.height);
    target.x = std::min(std::max(visible.minX() + fractions.x * visible.width, visible.minX()),
                        visible.maxX() - target.width);
    target.y = std::min(std::max(visible.minY() + fractions.y * visible.height, visible.minY()),
                        visible.maxY() - target.height);
    return target;
}

} // namespace tavrin
