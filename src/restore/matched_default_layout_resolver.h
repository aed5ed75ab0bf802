#pragma once

#include "display/monitor_profile_matcher.h"
#include "ports/profile_providing.h"

#include <optional>

namespace tavrin {

/// Finds the layout that is restored without asking.
class MatchedDefaultLayoutResolver {
public:
    explicit MatchedDefaultLayoutResolver(ProfileProviding& profileProvider)
        : profileProvider_(profileProvider) {}

    /// The default layout of the setup that these displays are, or are most like. Absent when none or
    /// several are similar, when the setup has no default, or when the files cannot be read.
    std::optional<SavedLayout> resolve(const DisplaySnapshotCollection& snapshot) const;

private:
    ProfileProviding& profileProvider_;
    MonitorProfileMatcher profileMatcher_;
};

} // namespace tavrin
