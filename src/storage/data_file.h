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
        if (stamp && stamp->isSettled && stamp == faultStamp_)
            return std::unexpected(*fault_);
        auto bytes = files.read(file_);
        if (!bytes)
            return std::unexpected(UnreadableFile{file_, bytes.error()});
        // Reading is cheap and decoding is not: the same bytes are not decoded twice.
        if (!decoded_ || *bytes != bytes_) {
            auto payload = migration_.decode<Payload>(*bytes);
            if (!payload) {
                fault_ = UnreadableFile{file_, payload.error()};
                faultStamp_ = stamp;
                return std::unexpected(*fault_);
            }
            remember(std::move(*payload), std::move(*bytes));
        }
        stamp_ = stamp;
        return decoded_;
    }

    /// Writes the payload beside the file; `now` is the time of writing. The caller holds the lock until the
    /// payload is published or dropped.
    std::expected<void, StoreError> stage(Payload payload, Timestamp now) {
        auto bytes = migration_.encode(payload, now);
        if (!bytes)
            return std::unexpected(bytes.error());
        auto staged = paths_.stage(file_, *bytes);
        if (!staged)
            return std::unexpected(staged.error());
        staged_.emplace(std::move(*staged), std::move(payload), std::move(*bytes));
        return {};
    }

    /// Replaces the file with what was staged.
    std::expected<void, StoreError> publish() {
        auto& [file, payload, bytes] = *staged_;
        if (const auto published = file.publish(); !published)
            return std::unexpected(published.error());
        remember(std::move(payload), std::move(bytes));
        staged_.reset();
        return {};
    }

    /// Forgets what was staged, if anything.
    void drop() { staged_.reset(); }

    /// `stage` and `publish` in one.
    std::expected<void, StoreError> save(Payload payload, Timestamp now) {
        auto saved = stage(std::move(payload), now);
        if (saved)
            saved = publish();
        drop();
        return saved;
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
    std::optional<UnreadableFile> fault_;
    std::optional<FileStamp> faultStamp_; ///< of the file when it had `fault_`
    std::optional<std::tuple<StagedFile, Payload, std::string>> staged_;
};

/// One operation on several files: locks them, reads all, lets `change` alter copies of what they hold,
/// writes all copies beside the files, and replaces the files in their order. Nothing is replaced when a file
/// cannot be read, `change` returns an error or a copy cannot be written.
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
            const auto succeeds = [&](std::expected<void, StoreError> step) {
                result = std::move(step);
                return result.has_value();
            };
            static_cast<void>(succeeds(change(payloads...)) &&
                              (succeeds(files.stage(std::move(payloads), now)) && ...) &&
                              (succeeds(files.publish()) && ...));
            (files.drop(), ...);
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
