#pragma once

#include "ports/file_system.h"

#include <chrono>
#include <cstddef>

namespace tavrin {

/// Files through the POSIX calls. New files have mode 0600 and new directories 0700. What cannot be looked
/// at (a link that goes in circles, a folder that may not be searched) counts as existing, so that the
/// following read reports the cause instead of the file being taken for missing.
class PosixFileSystem final : public FileSystem {
public:
    /// Larger than any sensible data file, small enough to hold in memory.
    static constexpr std::size_t defaultMaximumSize = std::size_t{64} * 1024 * 1024;

    /// `maximumSize` in bytes; reading or writing a larger file fails with EFBIG. `lockPatience`: how long
    /// `lock` waits for another process.
    explicit PosixFileSystem(std::size_t maximumSize = defaultMaximumSize,
                             std::chrono::milliseconds lockPatience = std::chrono::seconds{1})
        : maximumSize_(maximumSize), lockPatience_(lockPatience) {}

    bool exists(const std::filesystem::path& path) override;

    std::optional<FileStamp> stamp(const std::filesystem::path& path) override;

    /// EISDIR for a directory, EINVAL for any other file that is not regular. Never waits for a writer.
    std::expected<std::string, FileError> read(const std::filesystem::path& path) override;

    /// ENOTDIR when something else is in the way. Directories made before a failure are removed again.
    std::expected<void, FileError> createDirectories(const std::filesystem::path& path) override;

    /// Follows links at the end of `path`, also when the last of them leads to nothing. ELOOP for links
    /// that go in circles.
    std::expected<std::filesystem::path, FileError> resolveLink(const std::filesystem::path& path) override;

    /// EBUSY when another process kept the lock. The lock ends with the process, however that ends.
    std::expected<Token, FileError> lock(const std::filesystem::path& path) override;

    std::vector<std::string> names(const std::filesystem::path& directory) override;

    /// Never writes through a link or into an existing file: both are replaced.
    std::expected<void, FileError> writeFlushed(const std::filesystem::path& path,
                                                std::string_view bytes) override;

    std::expected<void, FileError> rename(const std::filesystem::path& from,
                                          const std::filesystem::path& to) override;

    /// Fine on file systems that know no flushing of directories.
    std::expected<void, FileError> flushDirectory(const std::filesystem::path& path) override;

    /// Removes a file or a link, not what the link leads to; a directory is an error.
    std::expected<void, FileError> remove(const std::filesystem::path& path) override;

private:
    std::size_t maximumSize_;
    std::chrono::milliseconds lockPatience_;
};

} // namespace tavrin
