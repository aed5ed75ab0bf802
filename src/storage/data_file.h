#pragma once

#include "storage/app_support_paths.h"
#include "storage/store_migration.h"

#include <expected>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace tavrin {

/// A data file with its payload in an envelope.
template <class Payload>
class DataFile {
public:
    using Snapshot = std::shared_ptr<const Payload>; ///< never null, never changed

    DataFile(AppSupportPaths paths, std::filesystem::path file)
        : paths_(std::move(paths)), file_(std::move(file)) {}

    /// What the file holds now; an empty payload when it does not exist.
    std::expected<Snapshot, UnreadableFile> load() {
        FileSystem& files = paths_.fileManager;
        if (!files.exists(file_))
            return std::make_shared<const Payload>();
        const auto stamp = files.stamp(file_);
        if (stamp && stamp->isSettled && stamp == stamp_)
            return decoded_;
        auto bytes = files.read(file_);
        if (!bytes)
            return std::unexpected(UnreadableFile{file_, bytes.error()});
        // Reading is cheap and decoding is not: the same bytes are not decoded twice.
        if (!decoded_ || *bytes != bytes_) {
            auto payload = migration_.decode<Payload>(*bytes);
            if (!payload)
                return std::unexpected(UnreadableFile{file_, payload.error()});
            remember(std::move(*payload), std::move(*bytes));
        }
        stamp_ = stamp;
        return decoded_;
    }

    /// Replaces the file; `now` is the time of writing. The caller holds the lock.
    std::expected<void, StoreError> save(Payload payload, Timestamp now) {
        auto bytes = migration_.encode(payload, now);
        if (!bytes)
            return std::unexpected(bytes.error());
        if (const auto written = paths_.writeAtomically(file_, *bytes); !written)
            return std::unexpected(written.error());
        remember(std::move(payload), std::move(*bytes));
        return {};
    }

    /// Renames the file when it cannot be read, and adds the new path to `renamed`. The caller holds the
    /// lock.
    std::expected<void, FileError> setAsideUnreadable(Timestamp now,
                                                      std::vector<std::filesystem::path>& renamed) {
        if (load())
            return {};
        auto aside = paths_.setAside(file_, now);
        if (!aside)
            return std::unexpected(aside.error());
        renamed.push_back(std::move(*aside));
        return {};
    }

private:
    void remember(Payload payload, std::string bytes) {
        decoded_ = std::make_shared<const Payload>(std::move(payload));
        bytes_ = std::move(bytes);
        stamp_.reset();
    }

    AppSupportPaths paths_;
    std::filesystem::path file_;
    StoreMigration migration_{1};
    Snapshot decoded_;               ///< null before the first time
    std::string bytes_;              ///< what `decoded_` was decoded from, or written as
    std::optional<FileStamp> stamp_; ///< of the file when it held `bytes_`
};

/// One operation on several files: locks them, reads all, lets `change` alter copies of what they hold, and
/// writes the copies in the order of the files. Nothing is written when a file cannot be read or `change`
/// returns an error; when a file cannot be written, those after it are not.
template <class Change, class... Payloads>
std::expected<void, StoreError> changeFiles(const AppSupportPaths& paths, Timestamp now, Change change,
                                            DataFile<Payloads>&... files) {
    const auto lock = paths.lock();
    if (!lock)
        return std::unexpected(lock.error());
    std::expected<void, StoreError> result;
    const auto copied = [&]<class Payload>(DataFile<Payload>& file) {
        const auto loaded = file.load();
        if (!loaded && result)
            result = std::unexpected(loaded.error());
        return loaded ? **loaded : Payload{};
    };
    std::tuple<Payloads...> copies{copied(files)...};
    if (!result)
        return result;
    return std::apply(
        [&](Payloads&... payloads) {
            if (result = change(payloads...); result)
                static_cast<void>(
                    ((result = files.save(std::move(payloads), now), result.has_value()) && ...));
            return result;
        },
        copies);
}

/// Renames those of the files that cannot be read; the new paths.
template <class... Payloads>
std::expected<std::vector<std::filesystem::path>, StoreError>
setAsideUnreadableFiles(const AppSupportPaths& paths, Timestamp now, DataFile<Payloads>&... files) {
    const auto lock = paths.lock();
    if (!lock)
        return std::unexpected(lock.error());
    std::vector<std::filesystem::path> renamed;
    std::expected<void, FileError> result;
    static_cast<void>(((result = files.setAsideUnreadable(now, renamed), result.has_value()) && ...));
    if (!result)
        return std::unexpected(result.error());
    return renamed;
}

/// Those of the files that are there and cannot be read.
template <class... Payloads>
std::vector<UnreadableFile> unreadableFiles(DataFile<Payloads>&... files) {
    std::vector<UnreadableFile> unreadable;
    const auto check = [&](const auto& loaded) {
        if (!loaded)
            unreadable.push_back(loaded.error());
    };
    (check(files.load()), ...);
    return unreadable;
}

} // namespace tavrin
