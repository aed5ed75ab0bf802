#include "storage/profile_store.h"

#include "base/text.h"

#include <algorithm>

namespace tavrin {
namespace {

std::unexpected<StoreError> refused(ProfileStoreError error) {
    return std::unexpected(StoreError(error));
}

} // namespace

std::expected<std::vector<MonitorProfile>, StoreError> ProfileStore::loadProfiles() {
    return profilesFile_.load();
}

std::expected<std::vector<SavedLayout>, StoreError> ProfileStore::loadLayouts() {
    return layoutsFile_.load();
}

std::optional<Uuid> ProfileStore::defaultLayoutID(const MonitorProfile& profile) {
    return profile.defaultLayoutID;
}

std::expected<std::vector<SavedLayout>, StoreError> ProfileStore::layouts(const Uuid& profileID) {
    auto layouts = loadLayouts();
    if (layouts)
        std::erase_if(*layouts, [&](const SavedLayout& layout) { return layout.profileID != profileID; });
    return layouts;
}

std::expected<MonitorProfile, StoreError> ProfileStore::createProfile(std::string_view name,
                                                                      const DisplayFingerprint& fingerprint) {
    const Timestamp now = clock_.now();
    const std::string trimmedName = trimmed(name);
    if (trimmedName.empty())
        return refused(EmptyProfileName{});
    auto profiles = loadProfiles();
    if (!profiles)
        return std::unexpected(profiles.error());
    profiles->push_back({.id = Uuid::random(),
                         .name = trimmedName,
                         .displayFingerprint = fingerprint,
                         .createdAt = now,
                         .updatedAt = now});
    if (const auto written = profilesFile_.save(*profiles, now); !written)
        return std::unexpected(written.error());
    return profiles->back();
}

std::expected<void, StoreError> ProfileStore::renameProfile(const Uuid& profileID, std::string_view name) {
    const std::string trimmedName = trimmed(name);
    if (trimmedName.empty())
        return refused(EmptyProfileName{});
    return changeProfile(profileID, [&](MonitorProfile& profile, Timestamp) { profile.name = trimmedName; });
}

std::expected<void, StoreError> ProfileStore::deleteProfile(const Uuid& profileID) {
    const Timestamp now = clock_.now();
    auto profiles = loadProfiles();
    if (!profiles)
        return std::unexpected(profiles.error());
    auto layouts = loadLayouts();
    if (!layouts)
        return std::unexpected(layouts.error());
    if (std::erase_if(*profiles, [&](const MonitorProfile& profile) { return profile.id == profileID; }) == 0)
        return refused(ProfileNotFound{profileID});
    std::erase_if(*layouts, [&](const SavedLayout& layout) { return layout.profileID == profileID; });
    return write(*layouts, *profiles, now);
}

std::expected<void, StoreError> ProfileStore::learnAssociation(const Uuid& profileID,
                                                               std::string_view signature,
                                                               std::string_view explanation) {
    return changeProfile(profileID, [&](MonitorProfile& profile, Timestamp now) {
        std::erase_if(profile.learnedAssociations, [&](const FuzzyProfileAssociation& association) {
            return association.confirmedDisplaySignature == signature;
        });
        profile.learnedAssociations.push_back({.id = Uuid::random(),
                                               .confirmedDisplaySignature = std::string(signature),
                                               .profileID = profileID,
                                               .explanation = std::string(explanation),
                                               .confirmedAt = now});
    });
}

std::expected<void, StoreError> ProfileStore::saveLayout(const SavedLayout& layout) {
    const Timestamp now = clock_.now();
    auto profiles = loadProfiles();
    if (!profiles)
        return std::unexpected(profiles.error());
    auto layouts = loadLayouts();
    if (!layouts)
        return std::unexpected(layouts.error());
    const auto profile = std::ranges::find(*profiles, layout.profileID, &MonitorProfile::id);
    if (profile == profiles->end())
        return refused(ProfileNotFound{layout.profileID});
    layouts->push_back(layout);
    profile->layoutIDs.push_back(layout.id);
    profile->updatedAt = now;
    return write(*layouts, *profiles, now);
}

std::expected<void, StoreError>
ProfileStore::replaceLayout(const Uuid& layoutID, SavedLayoutKind kind, std::vector<SavedLayoutEntry> entries,
                            std::optional<std::vector<SavedDisplay>> savedDisplays) {
    return changeLayout(layoutID, [&](SavedLayout& layout) {
        layout.kind = kind;
        layout.entries = std::move(entries);
        layout.savedDisplays = std::move(savedDisplays);
    });
}

std::expected<void, StoreError> ProfileStore::renameLayout(const Uuid& layoutID, std::string_view name) {
    const std::string trimmedName = trimmed(name);
    if (trimmedName.empty())
        return refused(EmptyLayoutName{});
    return changeLayout(layoutID, [&](SavedLayout& layout) { layout.name = trimmedName; });
}

std::expected<void, StoreError> ProfileStore::deleteLayout(const Uuid& layoutID) {
    const Timestamp now = clock_.now();
    auto layouts = loadLayouts();
    if (!layouts)
        return std::unexpected(layouts.error());
    const auto layout = std::ranges::find(*layouts, layoutID, &SavedLayout::id);
    if (layout == layouts->end())
        return refused(LayoutNotFound{layoutID});
    auto profiles = loadProfiles();
    if (!profiles)
        return std::unexpected(profiles.error());
    if (const auto profile = std::ranges::find(*profiles, layout->profileID, &MonitorProfile::id);
        profile != profiles->end()) {
        std::erase(profile->layoutIDs, layoutID);
        if (profile->defaultLayoutID == layoutID)
            profile->defaultLayoutID.reset();
        profile->updatedAt = now;
    }
    layouts->erase(layout);
    return write(*layouts, *profiles, now);
}

std::expected<void, StoreError> ProfileStore::setDefaultLayout(const Uuid& profileID,
                                                               std::optional<Uuid> layoutID) {
    return changeProfile(profileID,
                         [&](MonitorProfile& profile, Timestamp) { profile.defaultLayoutID = layoutID; });
}

template <class Change>
std::expected<void, StoreError> ProfileStore::changeProfile(const Uuid& profileID, Change change) {
    const Timestamp now = clock_.now();
    auto profiles = loadProfiles();
    if (!profiles)
        return std::unexpected(profiles.error());
    const auto profile = std::ranges::find(*profiles, profileID, &MonitorProfile::id);
    if (profile == profiles->end())
        return refused(ProfileNotFound{profileID});
    change(*profile, now);
    profile->updatedAt = now;
    return profilesFile_.save(*profiles, now);
}

template <class Change>
std::expected<void, StoreError> ProfileStore::changeLayout(const Uuid& layoutID, Change change) {
    const Timestamp now = clock_.now();
    auto layouts = loadLayouts();
    if (!layouts)
        return std::unexpected(layouts.error());
    const auto layout = std::ranges::find(*layouts, layoutID, &SavedLayout::id);
    if (layout == layouts->end())
        return refused(LayoutNotFound{layoutID});
    change(*layout);
    layout->updatedAt = now;
    return layoutsFile_.save(*layouts, now);
}

std::expected<void, StoreError> ProfileStore::write(const Layouts& layouts, const Profiles& profiles,
                                                    Timestamp now) {
    if (const auto written = layoutsFile_.save(layouts, now); !written)
        return written;
    return profilesFile_.save(profiles, now);
}

} // namespace tavrin
