#pragma once

#include "ports/runtime.h"
#include "ports/services.h"
#include "storage/data_file.h"

namespace tavrin {

/// The owner of the profiles file and the layouts file. Every operation reads what it needs and writes back
/// at once, under a lock that other programs respect; what it returns is what the files hold now. A file that
/// cannot be read fails the operation before anything is written. Operations that change both files write
/// the layouts first; there is no transaction across the two. Names are trimmed of white space and line
/// breaks.
class ProfileStore : public ProfileProviding {
public:
    ProfileStore(const AppSupportPaths& paths, WallClock& clock)
        : paths_(paths), clock_(clock), profilesFile_(paths, paths.profilesFile()),
          layoutsFile_(paths, paths.layoutsFile()) {}

    /// What both files hold; nothing is copied.
    std::expected<SavedSetups, StoreError> load() override;

    /// Copies of what one of the files holds.
    std::expected<std::vector<MonitorProfile>, StoreError> loadProfiles();
    std::expected<std::vector<SavedLayout>, StoreError> loadLayouts();

    std::optional<Uuid> defaultLayoutID(const MonitorProfile& profile) override;

    /// Appends a profile without layouts. `EmptyProfileName` for a blank name.
    std::expected<MonitorProfile, StoreError> createProfile(std::string_view name,
                                                            const DisplayFingerprint& fingerprint);

    /// `EmptyProfileName` for a blank name, `ProfileNotFound` for an unknown id.
    std::expected<void, StoreError> renameProfile(const Uuid& profileID, std::string_view name);

    /// Removes the profile with its layouts; `ProfileNotFound` for an unknown id.
    std::expected<void, StoreError> deleteProfile(const Uuid& profileID);

    /// Remembers that the user took `signature` for this profile; a signature is remembered once, the
    /// latest confirmation last. `ProfileNotFound` for an unknown id.
    std::expected<void, StoreError> learnAssociation(const Uuid& profileID, std::string_view signature,
                                                     std::string_view explanation);

    /// Appends the layout to the layouts and to its profile. `ProfileNotFound` when that is missing.
    std::expected<void, StoreError> saveLayout(const SavedLayout& layout);

    /// Replaces kind, windows and displays of a layout; its name stays. `LayoutNotFound` for an unknown id.
    std::expected<void, StoreError> replaceLayout(const Uuid& layoutID, SavedLayoutKind kind,
                                                  std::vector<SavedLayoutEntry> entries,
                                                  std::optional<std::vector<SavedDisplay>> savedDisplays);

    /// `EmptyLayoutName` for a blank name, `LayoutNotFound` for an unknown id.
    std::expected<void, StoreError> renameLayout(const Uuid& layoutID, std::string_view name);

    /// Removes every layout of that id, from the layouts and from the profiles, as their default too.
    /// `LayoutNotFound` for an unknown id.
    std::expected<void, StoreError> deleteLayout(const Uuid& layoutID);

    /// An absent layout clears the default. `ProfileNotFound` for an unknown profile.
    std::expected<void, StoreError> setDefaultLayout(const Uuid& profileID, std::optional<Uuid> layoutID);

    /// Makes a profile and its layouts what they were in `before`: records that changed since become as they
    /// were, those that are gone come back where they stood. Everything else stays as it is.
    std::expected<void, StoreError> putBack(const Uuid& profileID, const SavedSetups& before);

    /// Those of the two files that are there and cannot be read.
    std::vector<UnreadableFile> unreadableFiles();

    /// Renames each file that cannot be read to NAME.unreadable-DATE, so that it starts fresh; the new paths.
    std::expected<std::vector<std::filesystem::path>, StoreError> setAsideUnreadableFiles();

private:
    using Profiles = std::vector<MonitorProfile>;
    using Layouts = std::vector<SavedLayout>;

    /// Lets `change` alter the profile with that id, dates it and writes the profiles file.
    template <class Change>
    std::expected<void, StoreError> changeProfile(const Uuid& profileID, Change change);
    template <class Change>
    std::expected<void, StoreError> changeLayout(const Uuid& layoutID, Change change);

    AppSupportPaths paths_;
    WallClock& clock_;
    DataFile<Profiles> profilesFile_;
    DataFile<Layouts> layoutsFile_;
};

} // namespace tavrin
