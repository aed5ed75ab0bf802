#include "ui/current_profile_view_model.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace tavrin {
namespace {

CurrentSetup described(match::Exact exact) {
    return {.profile = std::move(exact.profile), .matchExplanation = std::move(exact.explanation)};
}

CurrentSetup described(match::Suggested suggested) {
    return {.candidates = {std::move(suggested.profile)},
            .matchExplanation = std::move(suggested.explanation)};
}

CurrentSetup described(match::Ambiguous ambiguous) {
    return {.candidates = std::move(ambiguous.profiles),
            .matchExplanation = std::move(ambiguous.explanation)};
}

CurrentSetup described(const match::NoMatch&) {
    return {.matchExplanation = "No saved layout has been matched to the current display setup yet."};
}

} // namespace

std::optional<std::string> CurrentSetup::currentProfileName() const {
    return profile.transform([](const MonitorProfile& matched) { return matched.name; });
}

std::optional<std::string> CurrentSetup::suggestedProfileName() const {
    if (candidates.empty())
        return std::nullopt;
    std::vector<std::string> names;
    for (const MonitorProfile& candidate : candidates)
        names.push_back(candidate.name);
    return fmt::format("{}", fmt::join(names, ", "));
}

std::optional<Uuid> CurrentSetup::suggestedProfileID() const {
    return candidates.size() == 1 ? std::optional(candidates.front().id) : std::nullopt;
}

void CurrentProfileViewModel::refresh() {
    const auto profiles = profileStore_.loadProfiles();
    if (!profiles) {
        setup.set({.matchExplanation = "Tavrin could not load saved display setup metadata."});
        return;
    }
    const DisplaySnapshotCollection snapshot = displaySnapshotProvider_.currentSnapshot();
    auto current = std::visit([](auto verdict) { return described(std::move(verdict)); },
                              matcher_.match(snapshot, *profiles));
    current.arrangementSignature = matcher_.makeFingerprint(snapshot).arrangementSignature;
    setup.set(std::move(current));
}

void CurrentProfileViewModel::confirmSuggestedProfile() {
    if (const auto profileID = setup.value().suggestedProfileID())
        confirm(*profileID);
}

void CurrentProfileViewModel::confirm(const Uuid& profileID) {
    const CurrentSetup& current = setup.value();
    if (std::ranges::find(current.candidates, profileID, &MonitorProfile::id) == current.candidates.end())
        return;
    // A failure changes nothing: the candidates are still there after the refresh.
    static_cast<void>(profileStore_.learnAssociation(profileID, current.arrangementSignature,
                                                     current.matchExplanation.value_or("")));
    refresh();
}

} // namespace tavrin
