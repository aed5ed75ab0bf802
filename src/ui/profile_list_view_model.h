#pragma once

#include "base/observable.h"
#include "storage/profile_store.h"

#include <string>
#include <vector>

namespace tavrin {

/// The list of all saved display setups, as the interface shows it.
class ProfileListViewModel {
public:
    explicit ProfileListViewModel(ProfileStore& profileStore) : profileStore_(profileStore) {}

    Observable<std::vector<MonitorProfile>> profiles;
    Observable<std::string> currentProfilePlaceholder{std::string("No profile matched yet")};

    /// After every `reload`, also when the list is as before: the layouts of a setup may not be.
    Signal<> reloaded;

    /// Reads the list again; one that cannot be read leaves what was shown.
    void reload();

    /// As the store's operations of that name; the list is read again even when they fail.
    std::expected<MonitorProfile, StoreError> createProfile(std::string_view name,
                                                            const DisplayFingerprint& fingerprint);
    std::expected<void, StoreError> renameProfile(const Uuid& profileID, std::string_view name);
    std::expected<void, StoreError> deleteProfile(const Uuid& profileID);

    /// How many confirmed recognitions a setup has, in words.
    static std::string associationCountText(const MonitorProfile& profile);

private:
    ProfileStore& profileStore_;
};

} // namespace tavrin
