#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_wall_clock.h"
#include "storage/profile_store.h"
#include "storage/settings_store.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <poll.h>
#include <random>
#include <string_view>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrin::faults {
namespace {

/// The three data files in the order of a save.
enum class DataFileKind { settings, layouts, profiles };
constexpr std::array allDataFiles = {DataFileKind::settings, DataFileKind::layouts, DataFileKind::profiles};

/// A number for each data file.
using Marks = std::array<std::uint64_t, 3>;

constexpr std::size_t repetitions = 60; ///< so many that a file is written in several pieces

/// The number that all texts are; absent when they differ.
std::optional<std::uint64_t> commonMark(const std::vector<std::string>& texts, std::size_t count) {
    if (texts.size() != count ||
        std::ranges::adjacent_find(texts, std::ranges::not_equal_to()) != texts.end())
        return std::nullopt;
    std::uint64_t value = 0;
    const auto* const last = texts.front().data() + texts.front().size();
    const auto [end, error] = std::from_chars(texts.front().data(), last, value);
    return error == std::errc{} && end == last ? std::optional(value) : std::nullopt;
}

/// A store whose files each hold one number all over, so that a file that mixes two saves gives itself away.
class MarkedStore {
public:
    /// `files` is what the store writes through.
    MarkedStore(FileSystem& files, const std::filesystem::path& directory) : paths_{files, directory} {
        if (const auto profiles = profiles_.loadProfiles(); profiles && !profiles->empty())
            profileID_ = profiles->front().id;
        if (const auto layouts = profiles_.loadLayouts(); layouts && !layouts->empty())
            layoutID_ = layouts->front().id;
    }

    /// Makes all three files, each with the mark 0.
    bool create() {
        const auto profile = profiles_.createProfile("0", {});
        if (!profile)
            return false;
        profileID_ = profile->id;
        layoutID_ = Uuid::random();
        const SavedLayout layout{
            .id = layoutID_, .profileID = profileID_, .name = "Work", .entries = entries(0)};
        return profiles_.saveLayout(layout) && save(DataFileKind::settings, 0) &&
               save(DataFileKind::profiles, 0);
    }

    /// Puts `mark` into one file; false when the store says it failed.
    bool save(DataFileKind file, std::uint64_t mark) {
        const auto text = std::to_string(mark);
        if (file == DataFileKind::settings)
            return settings_.save({.excludedBundleIDs = std::vector(repetitions, text)}).has_value();
        if (file == DataFileKind::profiles)
            return profiles_.renameProfile(profileID_, text).has_value();
        return profiles_.replaceLayout(layoutID_, SavedLayoutKind::appSpecific, entries(mark), {})
            .has_value();
    }

    /// The mark of each file as a fresh start of the program would read it. The text of the first thing
    /// that is wrong: a file that does not read, or holds parts of two saves.
    static std::expected<Marks, std::string> read(const std::filesystem::path& directory) {
        PosixFileSystem files;
        MarkedStore store(files, directory);
        const auto profiles = store.profiles_.loadProfiles();
        const auto layouts = store.profiles_.loadLayouts();
        const auto settings = store.settings_.load();
        if (!profiles)
            return std::unexpected("profiles: " + description(profiles.error()));
        if (!layouts)
            return std::unexpected("layouts: " + description(layouts.error()));
        if (!settings)
            return std::unexpected("settings: " + description(settings.error()));
        std::vector<std::string> names, titles;
        for (const auto& profile : *profiles)
            names.push_back(profile.name);
        for (const auto& layout : *layouts)
            for (const auto& entry : layout.entries)
                titles.push_back(entry.windowTitle.value_or(""));
        const auto inSettings = commonMark(settings->excludedBundleIDs, repetitions);
        const auto inLayouts = commonMark(titles, repetitions);
        const auto inProfiles = commonMark(names, 1);
        if (!inSettings || !inLayouts || !inProfiles)
            return std::unexpected(std::string("a file holds parts of two saves, or nothing"));
        return Marks{*inSettings, *inLayouts, *inProfiles};
    }

private:
    static std::vector<SavedLayoutEntry> entries(std::uint64_t mark) {
        std::vector<SavedLayoutEntry> entries(repetitions);
        for (auto& entry : entries)
            entry = {.id = Uuid::random(),
                     .bundleIdentifier = "xterm.XTerm",
                     .windowTitle = std::to_string(mark),
                     .frame = {0, 0, 640, 480}};
        return entries;
    }

    SystemWallClock clock_;
    AppSupportPaths paths_;
    ProfileStore profiles_{paths_, clock_};
    SettingsStore settings_{paths_, clock_};
    Uuid profileID_;
    Uuid layoutID_;
};

/// One line of the table.
struct Row {
    std::string fault;
    std::uint64_t rounds = 0; ///< how often the fault struck
    std::uint64_t held = 0;   ///< how often a file held the old content afterwards
    std::uint64_t renewed = 0;
    std::string problem; ///< the first thing that went wrong; empty for none
};

void print(const Row& row) {
    fmt::print("{:<46} {:>7} {:>9} {:>9}  {}\n", row.fault, row.rounds, row.held, row.renewed,
               row.problem.empty() ? "nothing lost" : "LOST: " + row.problem);
}

/// What the saving process has begun and what the store told it is done; lives on when it is killed.
struct Progress {
    std::array<std::atomic<std::uint64_t>, 3> begun{};
    std::array<std::atomic<std::uint64_t>, 3> done{};
};

[[noreturn]] void saveForEver(const std::filesystem::path& directory, Progress& progress) {
    PosixFileSystem files;
    MarkedStore store(files, directory);
    // Settings come first in a round, so no file holds a higher number.
    for (std::uint64_t mark = progress.done[0] + 1;; ++mark) {
        for (const auto file : allDataFiles) {
            const auto i = static_cast<std::size_t>(file);
            progress.begun[i] = mark;
            if (!store.save(file, mark))
                _exit(1);
            progress.done[i] = mark;
        }
    }
}

/// Kills the process within the next milliseconds; false when it had ended by itself.
bool killAtRandomMoment(pid_t process, std::mt19937_64& random) {
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    const auto nanoseconds = std::uniform_int_distribution<long>(0, 6'000'000)(random);
    const timespec moment{0, nanoseconds};
    pollfd wait{handle, POLLIN, 0};
    ppoll(&wait, 1, &moment, nullptr);
    kill(process, SIGKILL);
    int status = 0;
    waitpid(process, &status, 0);
    close(handle);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

/// Kills a process with SIGKILL at random moments while it saves, until that happened `kills` times.
Row killedSaves(const std::filesystem::path& directory, std::uint64_t kills) {
    Row row{.fault = "kill -9 at a random moment of a save"};
    void* shared = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto& progress = *new (shared) Progress;
    PosixFileSystem files;
    if (!MarkedStore(files, directory).create())
        row.problem = "the files could not be made";
    std::mt19937_64 random(std::random_device{}());
    while (row.problem.empty() && row.rounds < kills) {
        const pid_t process = fork();
        if (process == 0)
            saveForEver(directory, progress);
        if (!killAtRandomMoment(process, random)) {
            row.problem = "a save failed by itself";
            break;
        }
        const auto marks = MarkedStore::read(directory);
        if (!marks) {
            row.problem = marks.error();
            break;
        }
        // Only kills that struck a save count; those before and between saves prove nothing.
        bool struckSave = false;
        for (std::size_t i = 0; i < marks->size(); ++i) {
            const std::uint64_t begun = progress.begun[i];
            const std::uint64_t done = progress.done[i];
            const std::uint64_t found = (*marks)[i];
            if (found != begun && found != done)
                row.problem = fmt::format("saved {}, began {}, found {}", done, begun, found);
            if (begun == done)
                continue;
            struckSave = true;
            ++(found == begun ? row.renewed : row.held);
        }
        row.rounds += struckSave;
        for (std::size_t i = 0; i < marks->size(); ++i)
            progress.done[i] = progress.begun[i] = std::uint64_t{(*marks)[i]};
    }
    munmap(shared, sizeof(Progress));
    return row;
}

/// Tries to save every file once more and reads all of them with clear eyes.
void tryEverySave(FileSystem& files, const std::filesystem::path& directory, std::uint64_t mark,
                  bool mustFail, Row& row) {
    for (const auto file : allDataFiles) {
        const auto before = MarkedStore::read(directory);
        MarkedStore store(files, directory);
        const bool isSaved = store.save(file, mark);
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
        if (isSaved && *after != renewed)
            row.problem = "called saved, and was not";
        if (mustFail && isSaved)
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

/// Saves on a disk with less and less room. `directory` lies on a small file system of its own.
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

/// Tries every save in a directory that cannot be written to.
Row readOnlyDirectory(const std::filesystem::path& directory) {
    Row row{.fault = "a read-only directory"};
    PosixFileSystem files;
    for (std::uint64_t mark = 1; mark <= 20 && row.problem.empty(); ++mark)
        tryEverySave(files, directory, mark, true, row);
    if (row.problem.empty() && row.renewed > 0)
        row.problem = "the directory was not read-only";
    return row;
}

} // namespace
} // namespace tavrin::faults

// usage: tavrin-store-faults CHECK DIRECTORY [NUMBER]; prints one line of the table.
int main(int argc, char** argv) {
    using namespace tavrin::faults;
    if (argc < 3) {
        std::fputs("usage: tavrin-store-faults CHECK DIRECTORY [NUMBER]\n", stderr);
        return 2;
    }
    const std::string_view check = argv[1];
    const std::filesystem::path directory = argv[2];
    tavrin::PosixFileSystem files;
    if (check == "prepare")
        return MarkedStore(files, directory).create() ? EXIT_SUCCESS : EXIT_FAILURE;
    Row row{.problem = "no such check"};
    if (check == "kill")
        row = killedSaves(directory, argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 2000);
    else if (check == "full")
        row = fullDisk(directory);
    else if (check == "read-only")
        row = readOnlyDirectory(directory);
    print(row);
    return row.problem.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
