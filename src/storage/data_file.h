#pragma once

#include "storage/app_support_paths.h"
#include "storage/store_migration.h"

#include <optional>

namespace tavrin {

/// Puts `bytes` in the place of `file` so that at any moment, whatever happens, the file holds either the
/// old or the new content: a temporary file beside it is written, flushed and renamed, then the directory
/// is flushed. A link is followed and its target replaced. Creates the data directory when it is missing.
std::expected<void, FileError> writeAtomically(const AppSupportPaths& paths,
                                               const std::filesystem::path& file, std::string_view bytes);

/// The payload of a data file; absent when the file does not exist.
template <class Payload>
std::expected<std::optional<Payload>, StoreError> readDataFile(const AppSupportPaths& paths,
                                                               const std::filesystem::path& file,
                                                               const StoreMigration& migration) {
    if (!paths.fileManager.exists(file))
        return std::nullopt;
    const auto bytes = paths.fileManager.read(file);
    if (!bytes)
        return std::unexpected(bytes.error());
    auto payload = migration.decode<Payload>(*bytes);
    if (!payload)
        return std::unexpected(payload.error());
    return std::move(*payload);
}

template <class Payload>
std::expected<void, StoreError> writeDataFile(const AppSupportPaths& paths, const std::filesystem::path& file,
                                              const StoreMigration& migration, const Payload& payload,
                                              Timestamp now) {
    const auto bytes = migration.encode(payload, now);
    if (!bytes)
        return std::unexpected(bytes.error());
    if (const auto written = writeAtomically(paths, file, *bytes); !written)
        return std::unexpected(written.error());
    return {};
}

} // namespace tavrin
