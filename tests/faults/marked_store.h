#pragma once

#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_wall_clock.h"
#include "storage/profile_store.h"
#include "storage/settings_store.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tavrin::faults {

/// The three data files in the order of a save.
enum class DataFileKind { settings, layouts, profiles };
inline constexpr std::array allDataFiles = {DataFileKind::settings, DataFileKind::layouts,
                                            DataFileKind::profiles};

/// A number for each data file.
using Marks = std::array<std::uint64_t, 3>;

/// A store whose files each hold one number all over, so that a file that mixes two saves gives itself away.
class MarkedStore {
public:
    /// `files` is what the store writes through.
    MarkedStore(FileSystem& files, const std::filesystem::path& directory);

    /// Makes all three files, each with the mark 0.
    bool create();

    /// Puts `mark` into one file; the error's text when the store says it failed.
    std::optional<std::string> save(DataFileKind file, std::uint64_t mark);

    /// The mark of each file as a fresh start of the program would read it. The text of the first thing
    /// that is wrong: a file that does not read, or holds parts of two saves.
    static std::expected<Marks, std::string> read(const std::filesystem::path& directory);

    static std::filesystem::path path(const std::filesystem::path& directory, DataFileKind file);

private:
    SystemWallClock clock_;
    AppSupportPaths paths_;
    ProfileStore profiles_{paths_, clock_};
    SettingsStore settings_{paths_, clock_};
    Uuid profileID_;
    Uuid layoutID_;
};

/// Windows enough that a file is written in several pieces.
std::vector<SavedLayoutEntry> markedEntries(std::uint64_t mark);

} // namespace tavrin::faults
