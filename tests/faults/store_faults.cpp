#include "marked_store.h"

#include <fmt/format.h>

#include <atomic>
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
            if (store.save(file, mark))
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
