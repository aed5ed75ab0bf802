#include "checks.h"

#include <cerrno>
#include <fstream>

namespace tavrin::faults {
namespace {

/// The real files, with one step of one operation made to fail.
class FailingFileSystem final : public FileSystem {
public:
    FailingFileSystem(std::string_view step, bool isHalfDone) : step_(step), isHalfDone_(isHalfDone) {}

    bool exists(const std::filesystem::path& path) override { return files_.exists(path); }
    std::optional<FileStamp> stamp(const std::filesystem::path& path) override { return files_.stamp(path); }
    std::expected<Token, FileError> lock(const std::filesystem::path& path) override {
        return isFailing("lock") ? failure(path) : files_.lock(path);
    }
    std::vector<std::string> names(const std::filesystem::path& directory) override {
        return files_.names(directory);
    }
    std::expected<std::string, FileError> read(const std::filesystem::path& path) override {
        return isFailing("read") ? failure(path) : files_.read(path);
    }
    std::expected<void, FileError> createDirectories(const std::filesystem::path& path) override {
        return isFailing("mkdir") ? failure(path) : files_.createDirectories(path);
    }
    std::expected<std::filesystem::path, FileError> resolveLink(const std::filesystem::path& path) override {
        return isFailing("readlink") ? failure(path) : files_.resolveLink(path);
    }
    std::expected<void, FileError> writeFlushed(const std::filesystem::path& path,
                                                std::string_view bytes) override {
        if (isFailing("write")) {
            if (isHalfDone_)
                static_cast<void>(files_.writeFlushed(path, bytes.substr(0, bytes.size() / 2)));
            return failure(path);
        }
        const auto written = files_.writeFlushed(path, bytes);
        return isFailing("fsync") ? failure(path) : written;
    }
    std::expected<void, FileError> rename(const std::filesystem::path& from,
                                          const std::filesystem::path& to) override {
        return isFailing("rename") ? failure(to) : files_.rename(from, to);
    }
    std::expected<void, FileError> flushDirectory(const std::filesystem::path& path) override {
        return isFailing("fsync directory") ? failure(path) : files_.flushDirectory(path);
    }
    std::expected<void, FileError> remove(const std::filesystem::path& path) override {
        return isHalfDone_ ? failure(path) : files_.remove(path);
    }

private:
    bool isFailing(std::string_view step) const { return step == step_; }
    std::unexpected<FileError> failure(const std::filesystem::path& path) const {
        return std::unexpected(FileError{std::string(step_), path.string(), EIO});
    }

    PosixFileSystem files_;
    std::string_view step_;
    bool isHalfDone_;
};

/// Tries to save every file once more and reads all of them with clear eyes.
void tryEverySave(FileSystem& files, const std::filesystem::path& directory, std::uint64_t mark,
                  bool mustFail, Row& row) {
    for (const auto file : allDataFiles) {
        const auto before = MarkedStore::read(directory);
        MarkedStore store(files, directory);
        const auto error = store.save(file, mark);
        const auto after = MarkedStore::read(directory);
        if (!before || !after) {
            row.problem = before ? after.error() : before.error();
            return;
        }
        auto renewed = *before;
        renewed[static_cast<std::size_t>(file)] = mark;
        ++row.rounds;
        ++(*after == renewed ? row.renewed : row.held);
        if (*after != *before && *after != renewed)
            row.problem = "another file changed";
        if (!error && *after != renewed)
            row.problem = "called saved, and was not";
        if (mustFail && !error)
            row.problem = "called saved in spite of the fault";
    }
}

/// With the fault gone, saving goes on as if nothing had been.
void tryAfterwards(const std::filesystem::path& directory, Row& row) {
    PosixFileSystem files;
    Row sound;
    tryEverySave(files, directory, 1'000'000, false, sound);
    if (row.problem.empty() && (sound.renewed != allDataFiles.size() || !sound.problem.empty()))
        row.problem = "no saving after the fault: " + sound.problem;
}

} // namespace

Row fullDisk(const std::filesystem::path& directory) {
    Row row{.fault = "a full disk"};
    PosixFileSystem files;
    if (!MarkedStore(files, directory / "Tavrin").create())
        row.problem = "the files could not be made";
    const auto filler = directory / "filler";
    {
        std::ofstream rest(filler, std::ios::binary);
        const std::string block(1024, 'x');
        while (rest.write(block.data(), static_cast<std::streamsize>(block.size())).flush())
            continue;
    }
    // From no room at all to enough for every save, page by page.
    std::uint64_t mark = 1;
    for (auto size = std::filesystem::file_size(filler); size > 4096 && row.problem.empty(); size -= 4096) {
        std::filesystem::resize_file(filler, size);
        tryEverySave(files, directory / "Tavrin", mark++, false, row);
    }
    if (row.problem.empty() && (row.held == 0 || row.renewed == 0))
        row.problem = "the disk was never full, or always";
    tryAfterwards(directory / "Tavrin", row);
    return row;
}

Row readOnlyDirectory(const std::filesystem::path& directory) {
    Row row{.fault = "a read-only directory"};
    PosixFileSystem files;
    for (std::uint64_t mark = 1; mark <= 20 && row.problem.empty(); ++mark)
        tryEverySave(files, directory, mark, true, row);
    if (row.problem.empty() && row.renewed > 0)
        row.problem = "the directory was not read-only";
    return row;
}

Row failingStep(const std::filesystem::path& directory, std::string_view step, bool isHalfDone) {
    Row row{.fault = fmt::format("failing {}{}", step, isHalfDone ? ", the half-written file stays" : "")};
    FailingFileSystem files(step, isHalfDone);
    for (std::uint64_t mark = 1; mark <= 20 && row.problem.empty(); ++mark)
        tryEverySave(files, directory, mark, step != "fsync directory", row); // then the file is there
    tryAfterwards(directory, row);
    return row;
}

} // namespace tavrin::faults
