#pragma once

#include "base/uuid.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <variant>

namespace tavrin {

/// The file holds a well-formed envelope that another version of the program wrote.
struct UnsupportedVersion {
    std::int64_t version = 0;
    bool operator==(const UnsupportedVersion&) const = default;
};

/// The file's content could not be read; the description comes from the decoder.
struct DecodeFailed {
    std::string description;
    bool operator==(const DecodeFailed&) const = default;
};

/// Why a data file's content is refused.
using StoreMigrationError = std::variant<UnsupportedVersion, DecodeFailed>;

/// A record holds something that its file cannot express (a number that is not finite, broken text).
struct EncodeFailed {
    std::string description;
    bool operator==(const EncodeFailed&) const = default;
};

/// The file system refused an operation.
struct FileError {
    std::string operation; ///< what was tried, for example "open" or "rename"
    std::string path;
    int code = 0; ///< the system's error number
    bool operator==(const FileError&) const = default;

    /// The cause in the system's words, for example "No space left on device".
    std::string cause() const;

    /// Operation, path and cause in words.
    std::string description() const;
};

/// A data file is there and cannot be read.
struct UnreadableFile {
    std::filesystem::path file;
    std::variant<StoreMigrationError, FileError> why;
    bool operator==(const UnreadableFile&) const = default;

    /// Why, in words for the user, without the file.
    std::string reason() const;
};

/// Why the profile store refuses an operation.
struct ProfileNotFound {
    Uuid id;
    bool operator==(const ProfileNotFound&) const = default;
};
struct LayoutNotFound {
    Uuid id;
    bool operator==(const LayoutNotFound&) const = default;
};
struct EmptyProfileName {
    bool operator==(const EmptyProfileName&) const = default;
};
struct EmptyLayoutName {
    bool operator==(const EmptyLayoutName&) const = default;
};
using ProfileStoreError = std::variant<ProfileNotFound, LayoutNotFound, EmptyProfileName, EmptyLayoutName>;

/// Everything an operation of a store can fail with.
using StoreError = std::variant<ProfileStoreError, UnreadableFile, EncodeFailed, FileError>;

/// Why an operation failed, in words for the user, for example "Cannot read layouts.json: No such device".
std::string description(const StoreError& error);

} // namespace tavrin
