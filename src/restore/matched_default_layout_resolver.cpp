#include "restore/matched_default_layout_resolver.h"

#include <algorithm>

namespace tavrin {

std::optional<SavedLayout>
MatchedDefaultLayoutResolver::resolve(const DisplaySnapshotCollection& snapshot) const {
    const auto profiles = profileProvider_.loadProfiles();
    if (!profiles)
        return std::nullopt;
    const MatchResult verdict = profileMatcher_.match(snapshot, *profiles);
    const MonitorProfile* profile = nullptr;
    if (const auto* exact = std::get_if<match::Exact>(&verdict))
        profile = &exact->profile;
    else if (const auto* suggested = std::get_if<match::Suggested>(&verdict))
        profile = &suggested->profile;
    if (!profile)
        return std::nullopt;
    const auto layoutID = profileProvider_.defaultLayoutID(*profile);
    if (!layoutID)
        return std::nullopt;
    auto layouts = profileProvider_.loadLayouts();
    if (!layouts)
        return std::nullopt;
    const auto layout = std::ranges::find(*layouts, *layoutID, &SavedLayout::id);
    if (layout == layouts->end())
        return std::nullopt;
    return std::move(*layout);
}

} // namespace tavrin
