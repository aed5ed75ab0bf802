#pragma once

#include "storage/app_support_paths.h"
#include "storage/store_migration.h"

#include <expected>
#include <string>

namespace tavrin {

/// Puts `bytes` in the place of `file` so that at any moment, whatever happens, the file holds either the
/// old or the new content: a temporary file beside it is written, flushed and renamed, then the directory
/// is flushed. A link is followed and its target replaced. Creates the data directory when it is missing.
std::expected<void, FileError> writeAtomically(const AppSupportPaths& paths,
                                               const std::filesystem::path& file, std::string_view bytes);

/// A data file with its payload in an envelope.
template <class Payload>
class DataFile {
public:
    DataFile(AppSupportPaths paths, std::filesystem::path file)
        : paths_(std::move(paths)), file_(std::move(file)) {}

    /// What the file holds now; an empty payload when it does not exist.
    std::expected<Payload, StoreError> load() {
        if (!paths_.fileManager.exists(file_))
            return Payload{};
        auto bytes = paths_.fileManager.read(file_);
        if (!bytes)
            return std::unexpected(bytes.error());
        // Reading is cheap and decoding is not: the same bytes are not decoded twice.
        if (decodedBytes_.empty() || *bytes != decodedBytes_) {
            auto payload = migration_.decode<Payload>(*bytes);
            if (!payload)
                return std::unexpected(payload.error());
            decoded_ = std::move(*payload);
            decodedBytes_ = std::move(*bytes);
        }
        return decoded_;
    }

    /// Replaces the file; `now` is the time of writing.
    std::expected<void, StoreError> save(const Payload& payload, Timestamp now) const {
        const auto bytes = migration_.encode(payload, now);
        if (!bytes)
            return std::unexpected(bytes.error());
        if (const auto written = writeAtomically(paths_, file_, *bytes); !written)
            return std::unexpected(written.error());
        return {};
    }

private:
    AppSupportPaths paths_;
    std::filesystem::path file_;
    StoreMigration migration_{1};
    std::string decodedBytes_; ///< what `decoded_` was decoded from; empty before the first time
    Payload decoded_;
};

} // namespace tavrin
