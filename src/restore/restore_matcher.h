#pragma once

#include "records/displays.h"
#include "records/restore_result.h"

#include <vector>

namespace tavrin {

/// Decides which open window takes which saved place. It moves nothing itself.
class RestoreMatcher {
public:
    static constexpr double defaultGenericDistanceThreshold = 500.0;
    static constexpr double defaultCoordinateSanityLimit = 20000.0;

    /// `genericDistanceThreshold`: how far, in points from centre to centre, a window of a generic layout
    /// may be from its saved place. `coordinateSanityLimit`: saved frames with a coordinate or size
    /// beyond it are ignored.
    explicit RestoreMatcher(double genericDistanceThreshold = defaultGenericDistanceThreshold,
                            double coordinateSanityLimit = defaultCoordinateSanityLimit)
        : genericDistanceThreshold_(genericDistanceThreshold), coordinateSanityLimit_(coordinateSanityLimit) {
    }

    /// Each entry and each window is in at most one pair. Generic layouts: nearest first, whatever the
    /// application. Application-aware ones: by application, each application's pairs in slot order;
    /// entries and windows without a bundle identifier are never paired.
    std::vector<MatchedPair> pairs(const SavedLayout& layout, const std::vector<WindowInfo>& windows,
                                   const std::vector<DisplaySnapshot>& displays) const;

    /// Where the surplus windows go of applications that have more windows open than were saved: to the
    /// saved place that held most of the application's windows, by window number within an application.
    /// Empty for generic layouts. `pairs` are those made from the same three values.
    std::vector<MatchedPair> overflowPairs(const SavedLayout& layout, const std::vector<WindowInfo>& windows,
                                           const std::vector<DisplaySnapshot>& displays,
                                           const std::vector<MatchedPair>& pairs) const;

private:
    std::vector<SavedLayoutEntry> saneEntries(const SavedLayout& layout) const;

    double genericDistanceThreshold_;
    double coordinateSanityLimit_;
};

} // namespace tavrin
