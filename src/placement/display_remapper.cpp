#include "placement/display_remapper.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavrin {
namespace {

double area(const Rect& rect) {
    return rect.width * rect.height;
}

/// How well a display of now can stand in for a saved one; minus infinity when either has no area.
double similarity(const Rect& saved, const Rect& current) {
    const double savedArea = area(saved);
    const double currentArea = area(current);
    if (!(savedArea > 0 && currentArea > 0))
        return -std::numeric_limits<double>::infinity();
    const double distance =
        std::hypot(saved.x - current.minX(), saved.y - current.minY()) / std::max(1.0, std::sqrt(savedArea));
    return std::min(savedArea, currentArea) / std::max(savedArea, currentArea) - 0.1 * distance;
}

const DisplayPlacementInput& largest(const std::vector<DisplayPlacementInput>& displays) {
    const auto* best = &displays.front();
    for (const DisplayPlacementInput& display : displays)
        if (area(display.visibleFrame) > area(best->visibleFrame))
            best = &display;
    return *best;
}

} // namespace

DisplayRemapping DisplayRemapper::remap(const std::vector<SavedDisplay>& savedDisplays,
                                        const std::vector<DisplayPlacementInput>& currentDisplays) const {
    if (currentDisplays.empty())
        return {};
    DisplayRemapping remapping{.fallbackTarget = largest(currentDisplays)};
    if (savedDisplays.empty())
        return remapping;

    std::vector<DisplayPlacementInput> pool = currentDisplays;
    std::vector<SavedDisplay> unmatched;
    for (const SavedDisplay& saved : savedDisplays) {
        const auto found = std::ranges::find_if(pool, [&](const DisplayPlacementInput& display) {
            return display.isCalled(saved.displayIdentifier);
        });
        if (found == pool.end()) {
            unmatched.push_back(saved);
            continue;
        }
        remapping.perSaved[saved.displayIdentifier] = *found;
        pool.erase(found);
    }
    remapping.isExact = unmatched.empty();

    while (!unmatched.empty() && !pool.empty()) {
        // The first pair stands for "every score is minus infinity".
        auto bestSaved = unmatched.begin();
        auto bestDisplay = pool.begin();
        double bestScore = -std::numeric_limits<double>::infinity();
        for (auto saved = unmatched.begin(); saved != unmatched.end(); ++saved) {
            for (auto display = pool.begin(); display != pool.end(); ++display) {
                const double score = similarity(saved->visibleFrame, display->visibleFrame);
                if (score > bestScore) {
                    bestSaved = saved;
                    bestDisplay = display;
                    bestScore = score;
                }
            }
        }
        remapping.perSaved[bestSaved->displayIdentifier] = *bestDisplay;
        unmatched.erase(bestSaved);
        pool.erase(bestDisplay);
    }
    for (const SavedDisplay& saved : unmatched)
        remapping.perSaved[saved.displayIdentifier] = remapping.fallbackTarget;
    return remapping;
}

} // namespace tavrin
