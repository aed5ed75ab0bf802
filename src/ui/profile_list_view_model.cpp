#include "ui/profile_list_view_model.h"

#include <fmt/format.h>

namespace tavrin {

void ProfileListViewModel::reload() {
    if (auto loaded = profileStore_.loadProfiles())
        profiles.set(std::move(*loaded));
    reloaded.emit();
}

std::expected<MonitorProfile, StoreError>
ProfileListViewModel::createProfile(std::string_view name, const DisplayFingerprint& fingerprint) {
    auto created = profileStore_.createProfile(name, fingerprint);
    reload();
    return created;
}

std::expected<void, StoreError> ProfileListViewModel::renameProfile(const Uuid& profileID,
                                                                    std::string_view name) {
    auto renamed = profileStore_.renameProfile(profileID, name);
    reload();
    return renamed;
}

std::expected<void, StoreError> ProfileListViewModel::deleteProfile(const Uuid& profileID) {
    auto deleted = profileStore_.deleteProfile(profileID);
    reload();
    return deleted;
}

std::string ProfileListViewModel::associationCountText(const MonitorProfile& profile) {
    switch (profile.learnedAssociations.size()) {
    case 0:
        return "Association learning has not started yet.";
    case 1:
        return "1 Association learned";
    default:
        return fmt::format("{} Associations learned", profile.learnedAssociations.size());
    }
}

} // namespace tavrin
