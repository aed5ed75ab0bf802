#include "storage/app_support_paths.h"

#include "base/uuid.h"

#include <fmt/chrono.h>

namespace tavrin {
namespace {

constexpr std::string_view temporarySuffix = ".tmp";

/// Removes what programs that were killed while they wrote left beside `target`. Names of files still being
/// written are not settled: where there are no locks, another program may be at work.
void removeLeftovers(FileSystem& files, const std::filesystem::path& target) {
    const std::string prefix = "." + target.filename().string() + ".";
    for (const std::string& name : files.names(target.parent_path())) {
        if (!name.starts_with(prefix) || !name.ends_with(temporarySuffix))
            continue;
        const auto path = target.parent_path() / name;
        if (const auto stamp = files.stamp(path); stamp && stamp->isSettled)
            static_cast<void>(files.remove(path));
    }
}

} // namespace

StagedFile::StagedFile(FileSystem& files, std::filesystem::path temporary, std::filesystem::path target)
    : files_(files), temporary_(std::move(temporary)), target_(std::move(target)) {}

StagedFile::~StagedFile() {
    if (!temporary_.empty())
        static_cast<void>(files_.remove(temporary_));
}

std::expected<void, FileError> StagedFile::publish() {
    if (const auto renamed = files_.rename(temporary_, target_); !renamed)
        return renamed;
    temporary_.clear();
    // The new content is there. Failing now would call it lost, and leave a second file that belongs to it
    // behind.
    static_cast<void>(files_.flushDirectory(target_.parent_path()));
    return {};
}

std::expected<Token, FileError> AppSupportPaths::lock() const {
    if (const auto created = fileManager.createDirectories(rootURL); !created)
        return std::unexpected(created.error());
    return fileManager.lock(rootURL / ".lock");
}

std::expected<StagedFile, FileError> AppSupportPaths::stage(const std::filesystem::path& file,
                                                            std::string_view bytes) const {
    const auto target = fileManager.resolveLink(file);
    if (!target)
        return std::unexpected(target.error());
    removeLeftovers(fileManager, *target);
    const auto temporary = target->parent_path() / fmt::format(".{}.{}{}", target->filename().string(),
                                                               Uuid::random().text(), temporarySuffix);
    StagedFile staged(fileManager, temporary, *target);
    if (const auto written = fileManager.writeFlushed(temporary, bytes); !written)
        return std::unexpected(written.error());
    return staged;
}

std::expected<std::filesystem::path, FileError> AppSupportPaths::setAside(const std::filesystem::path& file,
                                                                          Timestamp now) const {
    const std::string name = fmt::format("{}.unreadable-{:%Y-%m-%d}", file.filename().string(), now);
    auto aside = file.parent_path() / name;
    for (int number = 2; fileManager.exists(aside); ++number)
        aside = file.parent_path() / fmt::format("{}-{}", name, number);
    if (const auto renamed = fileManager.rename(file, aside); !renamed)
        return std::unexpected(renamed.error());
    return aside;
}

} // namespace tavrin
