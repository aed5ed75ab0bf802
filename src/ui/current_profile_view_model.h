#pragma once

#include "base/observable.h"
#include "display/monitor_profile_matcher.h"
#include "ports/services.h"
#include "storage/profile_store.h"

#include <optional>
#include <string>

namespace tavrin {

/// Which saved display setup is connected now, or which one is suggested, as the interface shows it.
class CurrentProfileViewModel {
public:
    CurrentProfileViewModel(DisplaySnapshotProviding& displaySnapshotProvider, ProfileStore& profileStore)
        : displaySnapshotProvider_(displaySnapshotProvider), profileStore_(profileStore) {}

    Observable<std::optional<std::string>> currentProfileName;
    Observable<std::optional<std::string>> suggestedProfileName;
    Observable<std::optional<std::string>> matchExplanation;
    Observable<bool> requiresConfirmation{false};
    Observable<std::optional<Uuid>> currentProfileID; ///< setups may share a name

    /// After every refresh, when all of this is up to date.
    Signal<> refreshed;

    /// The profile matched exactly at the last refresh; absent otherwise.
    const std::optional<MonitorProfile>& currentProfile() const { return currentProfile_; }
    /// The one profile that waits for a confirmation; absent otherwise, also when several are similar.
    const std::optional<Uuid>& suggestedProfileID() const { return latestSuggestedProfileID_; }

    /// Reads profiles and displays again and publishes the verdict.
    void refresh();

    /// Remembers that the user takes the connected displays for the suggested setup. Does nothing without
    /// a suggestion.
    void confirmSuggestedProfile();

private:
    struct Published {
        std::optional<std::string> currentName;
        std::optional<std::string> suggestedName;
        std::optional<std::string> explanation;
        bool requiresConfirmation = false;
    };
    void publish(const Published& published);
    Published published(const match::Exact& exact);
    Published published(const match::Suggested& suggested);
    Published published(const match::Ambiguous& ambiguous);
    Published published(const match::NoMatch&);

    DisplaySnapshotProviding& displaySnapshotProvider_;
    MonitorProfileMatcher matcher_;
    ProfileStore& profileStore_;
    std::optional<MonitorProfile> currentProfile_;
    std::optional<Uuid> latestSuggestedProfileID_;
    std::optional<std::string> latestSnapshotSignature_;
};

} // namespace tavrin
