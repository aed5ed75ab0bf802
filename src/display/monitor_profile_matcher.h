#pragma once

#include "records/displays.h"
#include "records/profiles.h"

#include <vector>

namespace tavrin {

/// Decides which saved display setup the connected displays belong to. Only an exact result is certain: a
/// suggestion waits for the user, and of several similar setups none is picked.
class MonitorProfileMatcher {
public:
    static constexpr double candidateThreshold = 0.72;
    static constexpr double ambiguityMargin = 0.05;

    DisplayFingerprint makeFingerprint(const DisplaySnapshotCollection& displays) const;

    /// `profiles` in the order of the store, which decides between equals.
    MatchResult match(const DisplaySnapshotCollection& displays,
                      const std::vector<MonitorProfile>& profiles) const;

    /// How similar the displays are to the profile's, from 0 to 1: 0.6 for the arrangement, 0.2 for the
    /// hardware, 0.2 for the number of displays; 0 when that number differs.
    double similarityScore(const DisplaySnapshotCollection& displays, const MonitorProfile& profile) const;
};

/// The words for a suggestion.
ProfileMatchExplanation suggestedMatchExplanation();

/// The name of a profile that is made for these displays without asking: "Built-in Display", "External
/// Display", or for example "2-Display Setup".
std::string defaultProfileName(const DisplaySnapshotCollection& displays);

} // namespace tavrin
