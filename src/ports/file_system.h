#pragma once

#include "base/token.h"
#include "ports/store_error.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What tells one content of a file from another without reading it.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0; ///< nanoseconds since 1970
    bool isSettled = false;    ///< false after so recent a change that the next might leave the same stamp

    bool operator==(const FileStamp&) const = default;
};

/// The steps of which safe file writing is made. Each either does what it says or changes nothing and
/// returns the error with path and cause. Paths are absolute.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Something exists at `path` (a dangling link counts as nothing).
    virtual bool exists(const std::filesystem::path& path) = 0;

    /// The stamp of the file at `path`, links followed; absent when it cannot be read.
    virtual std::optional<FileStamp> stamp(const std::filesystem::path& path) = 0;

    /// All bytes of a regular file; other kinds of file are an error.
    virtual std::expected<std::string, FileError> read(const std::filesystem::path& path) = 0;

    /// Creates the directory, private to the user, with all that lie above it; an existing one is fine.
    virtual std::expected<void, FileError> createDirectories(const std::filesystem::path& path) = 0;

    /// Where `path` leads when links are followed; `path` itself when it is no link.
    virtual std::expected<std::filesystem::path, FileError>
    resolveLink(const std::filesystem::path& path) = 0;

    /// Makes this process the only one that holds the lock of that name, until the token ends. Creates the
    /// file `path`, which stays. An error when another process keeps the lock for longer than a second. A
    /// file system that knows no locks gives an empty token.
    virtual std::expected<Token, FileError> lock(const std::filesystem::path& path) = 0;

    /// The names in a directory, in no order; empty when it cannot be read.
    virtual std::vector<std::string> names(const std::filesystem::path& directory) = 0;

    /// Writes a new file, private to the user, and flushes it to the disk. An older file at `path` is lost.
    /// What is too large to be read again is not written.
    virtual std::expected<void, FileError> writeFlushed(const std::filesystem::path& path,
                                                        std::string_view bytes) = 0;

    /// Puts `from` in the place of `to` in one step.
    virtual std::expected<void, FileError> rename(const std::filesystem::path& from,
                                                  const std::filesystem::path& to) = 0;

    /// Flushes a directory's entries to the disk.
    virtual std::expected<void, FileError> flushDirectory(const std::filesystem::path& path) = 0;

    virtual std::expected<void, FileError> remove(const std::filesystem::path& path) = 0;
};

} // namespace tavrin
