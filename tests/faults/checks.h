#pragma once

#include "marked_store.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace tavrin::faults {

/// One line of the table.
struct Row {
    std::string fault;
    std::uint64_t rounds = 0; ///< how often the fault struck
    std::uint64_t held = 0;   ///< how often a file held the old content afterwards
    std::uint64_t renewed = 0;
    std::string problem; ///< the first thing that went wrong; empty for none
};

inline void print(const Row& row) {
    fmt::print("{:<46} {:>7} {:>9} {:>9}  {}\n", row.fault, row.rounds, row.held, row.renewed,
               row.problem.empty() ? "nothing lost" : "LOST: " + row.problem);
}

/// Kills a process with SIGKILL at random moments while it saves, until that happened `kills` times.
Row killedSaves(const std::filesystem::path& directory, std::uint64_t kills);

/// Saves on a disk with less and less room. `directory` lies on a small file system of its own.
Row fullDisk(const std::filesystem::path& directory);

/// Tries every save in a directory that cannot be written to.
Row readOnlyDirectory(const std::filesystem::path& directory);

/// Lets each step of each save fail in turn; with `isHalfDone` the step does half of its work first.
Row failingStep(const std::filesystem::path& directory, std::string_view step, bool isHalfDone);

/// Every operation of every store, with one file that must not be touched.
Row refusedFiles(const std::filesystem::path& directory);

} // namespace tavrin::faults
