#pragma once

#include "base/observable.h"
#include "display/monitor_profile_matcher.h"
#include "ports/services.h"
#include "storage/profile_store.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// Which saved display setup is connected, as the interface shows it.
struct CurrentSetup {
    std::optional<MonitorProfile> profile;  ///< the setup matched exactly; absent otherwise
    std::vector<MonitorProfile> candidates; ///< best first: one is suggested, several are too alike to choose
    std::optional<std::string> matchExplanation; ///< absent before the first refresh
    std::string arrangementSignature;            ///< of the displays that were matched

    bool operator==(const CurrentSetup&) const = default;

    bool requiresConfirmation() const { return !candidates.empty(); }
    std::optional<std::string> currentProfileName() const;
    /// The names of all candidates, joined with ", "; absent when there is none.
    std::optional<std::string> suggestedProfileName() const;
    /// The one setup that waits for a confirmation; absent also when several are similar.
    std::optional<Uuid> suggestedProfileID() const;
};

/// Keeps the current setup. Its observers get one change for each refresh that changed something.
class CurrentProfileViewModel {
public:
    CurrentProfileViewModel(DisplaySnapshotProviding& displaySnapshotProvider, ProfileStore& profileStore)
        : displaySnapshotProvider_(displaySnapshotProvider), profileStore_(profileStore) {}

    Observable<CurrentSetup> setup;

    /// Reads profiles and displays again and publishes the verdict.
    void refresh();

    /// Remembers that the user takes the connected displays for the suggested setup. Does nothing without
    /// a suggestion.
    void confirmSuggestedProfile();

    /// The same for one of the candidates. Does nothing when it is none of them.
    void confirm(const Uuid& profileID);

private:
    DisplaySnapshotProviding& displaySnapshotProvider_;
    MonitorProfileMatcher matcher_;
    ProfileStore& profileStore_;
};

} // namespace tavrin
