#pragma once

#include "base/timestamp.h"
#include "ports/file_system.h"

namespace tavrin {

/// The directory with the program's data and the files in it.
struct AppSupportPaths {
    FileSystem& fileManager;
    std::filesystem::path rootURL;

    std::filesystem::path profilesFile() const { return rootURL / "profiles.json"; }
    std::filesystem::path layoutsFile() const { return rootURL / "layouts.json"; }
    std::filesystem::path settingsFile() const { return rootURL / "settings.json"; }

    /// To be held from reading to writing by everybody who changes files here, so that of two programs that
    /// change one file neither loses what the other wrote. Creates the directory when it is missing; an
    /// error when another program keeps the lock for longer than a second.
    std::expected<Token, FileError> lock() const;

    /// Puts `bytes` in the place of `file` so that at any time, whatever happens, the file holds either
    /// the old or the new content: a file of a name of its own is written beside it, flushed and renamed,
    /// then the directory is flushed. A link is followed and its target replaced. The caller holds the lock.
    std::expected<void, FileError> writeAtomically(const std::filesystem::path& file,
                                                   std::string_view bytes) const;

    /// Renames a file that cannot be read to NAME.unreadable-DATE, so that the next start of it is fresh.
    /// The new path. A link is renamed itself. The caller holds the lock.
    std::expected<std::filesystem::path, FileError> setAside(const std::filesystem::path& file,
                                                             Timestamp now) const;
};

} // namespace tavrin
