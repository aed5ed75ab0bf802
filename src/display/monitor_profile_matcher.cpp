#include "display/monitor_profile_matcher.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>

namespace tavrin {
namespace {

struct MatchCandidate {
    const MonitorProfile* profile = nullptr;
    double similarityScore = 0;
};

bool isExactIdentity(const DisplayFingerprint& saved, const DisplayFingerprint& current) {
    return !saved.stableDisplayIDs.empty() && saved == current;
}

/// The keys of the displays in a signature; empty pieces are no keys.
std::vector<std::string_view> displayKeys(std::string_view signature) {
    std::vector<std::string_view> keys;
    while (!signature.empty()) {
        const auto end = std::min(signature.find('|'), signature.size());
        if (end > 0)
            keys.push_back(signature.substr(0, end));
        signature.remove_prefix(std::min(end + 1, signature.size()));
    }
    return keys;
}

double arrangementPart(std::string_view savedSignature, std::string_view currentSignature) {
    const auto saved = displayKeys(savedSignature);
    const auto current = displayKeys(currentSignature);
    if (saved == current)
        return 0.6;
    // Key by key at the same position: both lists are sorted, and one moved display is meant to cost much.
    double inPlace = 0;
    for (std::size_t i = 0; i < std::min(saved.size(), current.size()); ++i)
        if (saved[i] == current[i])
            ++inPlace;
    return inPlace / static_cast<double>(std::max(saved.size(), current.size())) * 0.6;
}

double identityPart(const std::vector<std::string>& savedIDs, const std::vector<std::string>& currentIDs) {
    const std::set<std::string> saved(savedIDs.begin(), savedIDs.end());
    const std::set<std::string> current(currentIDs.begin(), currentIDs.end());
    if (saved.empty() || current.empty())
        return 0;
    const auto shared = std::ranges::count_if(saved, [&](const auto& id) { return current.contains(id); });
    return static_cast<double>(shared) / static_cast<double>(std::max(saved.size(), current.size())) * 0.2;
}

double similarity(const DisplayFingerprint& current, const DisplayFingerprint& saved) {
    if (saved.displayCount != current.displayCount)
        return 0;
    return arrangementPart(saved.arrangementSignature, current.arrangementSignature) +
           identityPart(saved.stableDisplayIDs, current.stableDisplayIDs) + 0.2;
}

} // namespace

DisplayFingerprint MonitorProfileMatcher::makeFingerprint(const DisplaySnapshotCollection& displays) const {
    DisplayFingerprint fingerprint{.displayCount = static_cast<std::int64_t>(displays.displays.size())};
    std::vector<std::string> keys;
    for (const DisplaySnapshot& display : displays.displays) {
        if (display.stableID)
            fingerprint.stableDisplayIDs.push_back(*display.stableID);
        keys.push_back(display.arrangementKey());
    }
    std::ranges::sort(fingerprint.stableDisplayIDs);
    std::ranges::sort(keys);
    fingerprint.arrangementSignature = fmt::format("{}", fmt::join(keys, "|"));
    return fingerprint;
}

MatchResult MonitorProfileMatcher::match(const DisplaySnapshotCollection& displays,
                                         const std::vector<MonitorProfile>& profiles) const {
    if (profiles.empty())
        return match::NoMatch{};
    const DisplayFingerprint current = makeFingerprint(displays);

    for (const MonitorProfile& profile : profiles)
        if (isExactIdentity(profile.displayFingerprint, current))
            return match::Exact{profile, "Exact display identity and arrangement match."};

    for (const MonitorProfile& profile : profiles)
        for (const FuzzyProfileAssociation& association : profile.learnedAssociations)
            if (association.confirmedDisplaySignature == current.arrangementSignature)
                return match::Exact{profile, "Reused a previously confirmed fuzzy association."};

    std::vector<MatchCandidate> candidates;
    for (const MonitorProfile& profile : profiles)
        if (const double score = similarity(current, profile.displayFingerprint); score >= candidateThreshold)
            candidates.push_back({&profile, score});
    std::ranges::stable_sort(candidates, [](const MatchCandidate& a, const MatchCandidate& b) {
        return a.similarityScore != b.similarityScore ? a.similarityScore > b.similarityScore
                                                      : a.profile->name < b.profile->name;
    });
    if (candidates.empty())
        return match::NoMatch{};
    if (candidates.size() >= 2 &&
        std::abs(candidates[0].similarityScore - candidates[1].similarityScore) < ambiguityMargin) {
        match::Ambiguous ambiguous{
            .explanation = "Multiple saved profiles look similar, so Tavrin will not auto-select one."};
        for (const MatchCandidate& candidate : candidates)
            ambiguous.profiles.push_back(*candidate.profile);
        return ambiguous;
    }
    return match::Suggested{*candidates.front().profile, suggestedMatchExplanation().message};
}

double MonitorProfileMatcher::similarityScore(const DisplaySnapshotCollection& displays,
                                              const MonitorProfile& profile) const {
    return similarity(makeFingerprint(displays), profile.displayFingerprint);
}

ProfileMatchExplanation suggestedMatchExplanation() {
    return {"Suggested display setup", "same display count and nearly identical arrangement"};
}

std::string defaultProfileName(const DisplaySnapshotCollection& displays) {
    if (displays.displays.size() == 1)
        return displays.displays.front().isInternal ? "Built-in Display" : "External Display";
    return fmt::format("{}-Display Setup", displays.displays.size());
}

} // namespace tavrin
