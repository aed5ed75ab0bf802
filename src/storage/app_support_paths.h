#pragma once

#include "base/timestamp.h"
#include "ports/file_system.h"

#include <utility>

namespace tavrin {

/// The new content of a file, flushed to the disk beside it. Removed again unless it is published.
class StagedFile {
public:
    StagedFile(FileSystem& files, std::filesystem::path temporary, std::filesystem::path target);
    StagedFile(StagedFile&& other) noexcept
        : files_(other.files_), temporary_(std::exchange(other.temporary_, {})),
          target_(std::move(other.target_)) {}
    ~StagedFile();

    /// Puts the content in the place of the file: at any moment, whatever happens, the file holds either the
    /// old or the new content.
    std::expected<void, FileError> publish();

private:
    FileSystem& files_;
    std::filesystem::path temporary_; ///< empty when there is nothing left to remove
    std::filesystem::path target_;
};

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

    /// Writes `bytes` beside `file`, ready to take its place. A link is followed and its target replaced. The
    /// caller holds the lock until the result is published.
    std::expected<StagedFile, FileError> stage(const std::filesystem::path& file,
                                               std::string_view bytes) const;

    /// Renames a file that cannot be read to NAME.unreadable-DATE, so that the next start of it is fresh.
    /// The new path. A link is renamed itself. The caller holds the lock.
    std::expected<std::filesystem::path, FileError> setAside(const std::filesystem::path& file,
                                                             Timestamp now) const;
};

} // namespace tavrin
