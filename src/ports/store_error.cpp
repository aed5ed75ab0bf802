#include "ports/store_error.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>

namespace tavrin {

std::string FileError::cause() const {
    return std::generic_category().message(code);
}

std::string FileError::description() const {
    return fmt::format("{} {}: {}", operation, path, cause());
}

std::string UnreadableFile::reason() const {
    if (const auto* fileError = std::get_if<FileError>(&why))
        return fileError->cause();
    const auto& migrationError = std::get<StoreMigrationError>(why);
    if (const auto* unsupported = std::get_if<UnsupportedVersion>(&migrationError))
        return fmt::format("it was written by another version of the program (format {})",
                           unsupported->version);
    return std::get<DecodeFailed>(migrationError).description;
}

std::string description(const StoreError& error) {
    struct {
        std::string operator()(const ProfileStoreError& refusal) const {
            if (std::holds_alternative<ProfileNotFound>(refusal))
                return "The display setup no longer exists.";
            if (std::holds_alternative<LayoutNotFound>(refusal))
                return "The layout no longer exists.";
            return "The name is empty.";
        }
        std::string operator()(const UnreadableFile& file) const {
            return fmt::format("Cannot read {}: {}", file.file.filename().string(), file.reason());
        }
        std::string operator()(const EncodeFailed& failure) const {
            return fmt::format("Cannot be stored: {}", failure.description);
        }
        std::string operator()(const FileError& failure) const {
            if (failure.operation == "lock" && failure.code == EBUSY)
                return "Another copy of Tavrin is using the files.";
            return fmt::format("Cannot {} {}: {}", failure.operation, failure.path, failure.cause());
        }
    } texts;
    return std::visit(texts, error);
}

} // namespace tavrin
