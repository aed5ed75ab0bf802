#include "placement/display_remapper.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavrin {
namespace {

double area(const Rect& rect) {
    return rect.width * rect.height;
}

/// How well a current display can stand in for a saved one; minus infinity when either has no area.
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

/// Pairs saved with current displays as long as there is a pair that `admits` allows, the most similar pair
/// first; of equally similar ones the earliest.
template <class Admits>
void pairMostSimilar(std::vector<RemappedDisplay*>& unmatched, std::vector<DisplayPlacementInput>& pool,
                     Admits admits) {
    while (true) {
        auto bestSaved = unmatched.end();
        auto bestDisplay = pool.end();
        double bestScore = -std::numeric_limits<double>::infinity();
        for (auto saved = unmatched.begin(); saved != unmatched.end(); ++saved) {
            for (auto display = pool.begin(); display != pool.end(); ++display) {
                if (!admits((*saved)->saved, *display))
                    continue;
                const double score = similarity((*saved)->saved.visibleFrame, display->visibleFrame);
                if (score > bestScore || bestSaved == unmatched.end()) {
                    bestSaved = saved;
                    bestDisplay = display;
                    bestScore = score;
                }
            }
        }
        if (bestSaved == unmatched.end())
            return;
        (*bestSaved)->target = *bestDisplay;
        unmatched.erase(bestSaved);
        pool.erase(bestDisplay);
    }
}

} // namespace

const RemappedDisplay* DisplayRemapping::displayOf(const SavedLayoutEntry& entry) const {
    const RemappedDisplay* nearest = nullptr;
    double shortest = 0;
    for (const RemappedDisplay& display : perSaved) {
        if (display.saved.displayIdentifier != entry.displayIdentifier)
            continue;
        const double distance =
            entry.normalizedFrame
                ? frameDistance(frameFromFractions(*entry.normalizedFrame, display.saved.visibleFrame),
                                entry.frame)
                : 0;
        if (!nearest || distance < shortest) {
            nearest = &display;
            shortest = distance;
        }
    }
    return nearest;
}

DisplayRemapping DisplayRemapper::remap(const std::vector<SavedDisplay>& savedDisplays,
                                        const std::vector<DisplayPlacementInput>& currentDisplays) const {
    if (currentDisplays.empty())
        return {};
    DisplayRemapping remapping{.perSaved = {}, .fallbackTarget = largest(currentDisplays)};
    if (savedDisplays.empty())
        return remapping;
    for (const SavedDisplay& saved : savedDisplays)
        remapping.perSaved.push_back({saved, remapping.fallbackTarget});

    std::vector<DisplayPlacementInput> pool = currentDisplays;
    std::vector<RemappedDisplay*> unmatched;
    for (RemappedDisplay& display : remapping.perSaved)
        unmatched.push_back(&display);
    pairMostSimilar(unmatched, pool, [](const SavedDisplay& saved, const DisplayPlacementInput& display) {
        return display.isCalled(saved.displayIdentifier);
    });
    remapping.isExact = unmatched.empty();
    pairMostSimilar(unmatched, pool, [](const auto&, const auto&) { return true; });
    return remapping;
}

} // namespace tavrin
