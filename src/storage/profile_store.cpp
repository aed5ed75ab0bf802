#include "storage/profile_store.h"

#include "base/text.h"

#include <algorithm>

namespace tavrin {
namespace {

std::unexpected<StoreError> refused(ProfileStoreError error) {
    return std::unexpected(StoreError(error));
}

/// Puts the records of `before` that are meant back into `records`, each behind the one it stood behind.
template <class Record, class Predicate>
void putBackRecords(std::vector<Record>& records, const std::vector<Record>& before, Predicate isMeant) {
    auto place = records.begin();
    for (const Record& record : before) {
        const auto found = std::ranges::find(records, record.id, &Record::id);
        if (found != records.end()) {
            if (isMeant(record))
                *found = record;
            place = found + 1;
        } else if (isMeant(record)) {
            place = records.insert(place, record) + 1;
        }
    }
}

} // namespace

std::expected<SavedSetups, StoreError> ProfileStore::load() {
    auto profiles = profilesFile_.load();
    if (!profiles)
        return std::unexpected(profiles.error());
    auto layouts = layoutsFile_.load();
    if (!layouts)
        return std::unexpected(layouts.error());
    return SavedSetups(std::move(*profiles), std::move(*layouts));
}

std::expected<std::vector<MonitorProfile>, StoreError> ProfileStore::loadProfiles() {
    const auto loaded = profilesFile_.load();
    if (!loaded)
        return std::unexpected(loaded.error());
    return **loaded;
}

std::expected<std::vector<SavedLayout>, StoreError> ProfileStore::loadLayouts() {
    const auto loaded = layoutsFile_.load();
    if (!loaded)
        return std::unexpected(loaded.error());
    return **loaded;
}

std::optional<Uuid> ProfileStore::defaultLayoutID(const MonitorProfile& profile) {
    return profile.defaultLayoutID;
}

std::expected<MonitorProfile, StoreError> ProfileStore::createProfile(std::string_view name,
                                                                      const DisplayFingerprint& fingerprint) {
    const Timestamp now = clock_.now();
    const MonitorProfile profile{.id = Uuid::random(),
                                 .name = trimmed(name),
                                 .displayFingerprint = fingerprint,
                                 .createdAt = now,
                                 .updatedAt = now};
    if (profile.name.empty())
        return refused(EmptyProfileName{});
    const auto append = [&](Profiles& profiles) -> std::expected<void, StoreError> {
        profiles.push_back(profile);
        return {};
    };
    if (const auto written = changeFiles(paths_, now, append, profilesFile_); !written)
        return std::unexpected(written.error());
    return profile;
}

std::expected<void, StoreError> ProfileStore::renameProfile(const Uuid& profileID, std::string_view name) {
    const std::string trimmedName = trimmed(name);
    if (trimmedName.empty())
        return refused(EmptyProfileName{});
    return changeProfile(profileID, [&](MonitorProfile& profile, Timestamp) { profile.name = trimmedName; });
}

std::expected<void, StoreError> ProfileStore::deleteProfile(const Uuid& profileID) {
    const auto remove = [&](Layouts& layouts, Profiles& profiles) -> std::expected<void, StoreError> {
        if (std::erase_if(profiles, [&](const MonitorProfile& profile) { return profile.id == profileID; }) ==
            0)
            return refused(ProfileNotFound{profileID});
        std::erase_if(layouts, [&](const SavedLayout& layout) { return layout.profileID == profileID; });
        return {};
    };
    return changeFiles(paths_, clock_.now(), remove, layoutsFile_, profilesFile_);
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
    const auto append = [&](Layouts& layouts, Profiles& profiles) -> std::expected<void, StoreError> {
        const auto profile = std::ranges::find(profiles, layout.profileID, &MonitorProfile::id);
        if (profile == profiles.end())
            return refused(ProfileNotFound{layout.profileID});
        layouts.push_back(layout);
        profile->layoutIDs.push_back(layout.id);
        profile->updatedAt = now;
        return {};
    };
    return changeFiles(paths_, now, append, layoutsFile_, profilesFile_);
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
    const auto remove = [&](Layouts& layouts, Profiles& profiles) -> std::expected<void, StoreError> {
        if (std::erase_if(layouts, [&](const SavedLayout& layout) { return layout.id == layoutID; }) == 0)
            return refused(LayoutNotFound{layoutID});
        for (MonitorProfile& profile : profiles) {
            const bool wasDefault = profile.defaultLayoutID == layoutID;
            if (std::erase(profile.layoutIDs, layoutID) == 0 && !wasDefault)
                continue;
            if (wasDefault)
                profile.defaultLayoutID.reset();
            profile.updatedAt = now;
        }
        return {};
    };
    return changeFiles(paths_, now, remove, layoutsFile_, profilesFile_);
}

std::expected<void, StoreError> ProfileStore::setDefaultLayout(const Uuid& profileID,
                                                               std::optional<Uuid> layoutID) {
    return changeProfile(profileID,
                         [&](MonitorProfile& profile, Timestamp) { profile.defaultLayoutID = layoutID; });
}

std::expected<void, StoreError> ProfileStore::putBack(const Uuid& profileID, const SavedSetups& before) {
    const auto restore = [&](Layouts& layouts, Profiles& profiles) -> std::expected<void, StoreError> {
        putBackRecords(layouts, before.layouts(),
                       [&](const SavedLayout& layout) { return layout.profileID == profileID; });
        putBackRecords(profiles, before.profiles(),
                       [&](const MonitorProfile& profile) { return profile.id == profileID; });
        return {};
    };
    return changeFiles(paths_, clock_.now(), restore, layoutsFile_, profilesFile_);
}

std::vector<UnreadableFile> ProfileStore::unreadableFiles() {
    return tavrin::unreadableFiles(profilesFile_, layoutsFile_);
}

std::expected<std::vector<std::filesystem::path>, StoreError> ProfileStore::setAsideUnreadableFiles() {
    return tavrin::setAsideUnreadableFiles(paths_, clock_.now(), profilesFile_, layoutsFile_);
}

template <class Change>
std::expected<void, StoreError> ProfileStore::changeProfile(const Uuid& profileID, Change change) {
    const Timestamp now = clock_.now();
    const auto changeOne = [&](Profiles& profiles) -> std::expected<void, StoreError> {
        const auto profile = std::ranges::find(profiles, profileID, &MonitorProfile::id);
        if (profile == profiles.end())
            return refused(ProfileNotFound{profileID});
        change(*profile, now);
        profile->updatedAt = now;
        return {};
    };
    return changeFiles(paths_, now, changeOne, profilesFile_);
}

template <class Change>
std::expected<void, StoreError> ProfileStore::changeLayout(const Uuid& layoutID, Change change) {
    const Timestamp now = clock_.now();
    const auto changeOne = [&](Layouts& layouts) -> std::expected<void, StoreError> {
        const auto layout = std::ranges::find(layouts, layoutID, &SavedLayout::id);
        if (layout == layouts.end())
            return refused(LayoutNotFound{layoutID});
        change(*layout);
        layout->updatedAt = now;
        return {};
    };
    return changeFiles(paths_, now, changeOne, layoutsFile_);
}

} // namespace tavrin
