#pragma once

#include "ports/store_error.h"

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

namespace tavrin {

/// The steps of which safe file writing is made. Each either does what it says or changes nothing and
/// returns the error with path and cause. Paths are absolute.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Something exists at `path` (a dangling link counts as nothing).
    virtual bool exists(const std::filesystem::path& path) = 0;

    /// All bytes of a regular file; other kinds of file are an error.
    virtual std::expected<std::string, FileError> read(const std::filesystem::path& path) = 0;

    /// Creates the directory, private to the user, with all that lie above it; an existing one is fine.
    virtual std::expected<void, FileError> createDirectories(const std::filesystem::path& path) = 0;

    /// Where `path` leads when links are followed; `path` itself when it is no link.
    virtual std::expected<std::filesystem::path, FileError>
    resolveLink(const std::filesystem::path& path) = 0;

    /// Writes a new file, private to the user, and flushes it to the disk. An older file at `path` is lost.
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
