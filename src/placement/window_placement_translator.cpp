#include "placement/window_placement_translator.h"

#include <algorithm>

namespace tavrin {
namespace {

/// Windows and visible frames are kept in different spaces, so the limits below would shift windows near an
/// edge even where nothing has changed. A frame edited by hand no longer agrees with its fractions; then
/// these count.
bool isUnchanged(const RemappedDisplay& display, const SavedLayoutEntry& entry) {
    constexpr double roundingError = 0.01;
    return display.target.isCalled(display.saved.displayIdentifier) &&
           display.target.visibleFrame == display.saved.visibleFrame &&
           frameDistance(frameFromFractions(*entry.normalizedFrame, display.saved.visibleFrame),
                         entry.frame) < roundingError;
}

} // namespace

Rect WindowPlacementTranslator::targetFrame(const SavedLayoutEntry& entry,
                                            const DisplayRemapping& remapping) const {
    if (!entry.normalizedFrame)
        return entry.frame;
    const RemappedDisplay* display = remapping.displayOf(entry);
    if (display && isUnchanged(*display, entry))
        return entry.frame;
    const Rect& visible = (display ? display->target : remapping.fallbackTarget).visibleFrame;
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
