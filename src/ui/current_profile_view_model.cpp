#include "ui/current_profile_view_model.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tavrin {

void CurrentProfileViewModel::refresh() {
    currentProfile_.reset();
    latestSuggestedProfileID_.reset();
    const auto profiles = profileStore_.loadProfiles();
    if (!profiles) {
        publish({.explanation = "Tavrin could not load saved display setup metadata."});
        return;
    }
    const DisplaySnapshotCollection snapshot = displaySnapshotProvider_.currentSnapshot();
    latestSnapshotSignature_ = matcher_.makeFingerprint(snapshot).arrangementSignature;
    publish(std::visit([this](const auto& verdict) { return published(verdict); },
                       matcher_.match(snapshot, *profiles)));
}

void CurrentProfileViewModel::confirmSuggestedProfile() {
    if (!latestSuggestedProfileID_ || !latestSnapshotSignature_ || !matchExplanation.value())
        return;
    // A failure changes nothing: the suggestion is still there after the refresh.
    static_cast<void>(profileStore_.learnAssociation(*latestSuggestedProfileID_, *latestSnapshotSignature_,
                                                     *matchExplanation.value()));
    refresh();
}

void CurrentProfileViewModel::publish(const Published& published) {
    currentProfileName.set(published.currentName);
    suggestedProfileName.set(published.suggestedName);
    matchExplanation.set(published.explanation);
    requiresConfirmation.set(published.requiresConfirmation);
    currentProfileID.set(currentProfile_ ? std::optional(currentProfile_->id) : std::nullopt);
    refreshed.emit();
}

CurrentProfileViewModel::Published CurrentProfileViewModel::published(const match::Exact& exact) {
    currentProfile_ = exact.profile;
    return {.currentName = exact.profile.name, .explanation = exact.explanation};
}

CurrentProfileViewModel::Published CurrentProfileViewModel::published(const match::Suggested& suggested) {
    latestSuggestedProfileID_ = suggested.profile.id;
    return {.suggestedName = suggested.profile.name,
            .explanation = suggested.explanation,
            .requiresConfirmation = true};
}

CurrentProfileViewModel::Published CurrentProfileViewModel::published(const match::Ambiguous& ambiguous) {
    std::vector<std::string> names;
    for (const MonitorProfile& profile : ambiguous.profiles)
        names.push_back(profile.name);
    return {.suggestedName = fmt::format("{}", fmt::join(names, ", ")),
            .explanation = ambiguous.explanation,
            .requiresConfirmation = true};
}

CurrentProfileViewModel::Published CurrentProfileViewModel::published(const match::NoMatch&) {
    return {.explanation = "No saved layout has been matched to the current display setup yet."};
}

} // namespace tavrin
