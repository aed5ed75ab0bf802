#include "placement/window_placement.h"

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
