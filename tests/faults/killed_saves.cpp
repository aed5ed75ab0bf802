#include "checks.h"

#include <atomic>
#include <csignal>
#include <poll.h>
#include <random>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrin::faults {
namespace {

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

} // namespace

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

} // namespace tavrin::faults
