#pragma once

#include "records/windows.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The application that a session manager, Flatpak or snap named when it started a group of processes.
struct LaunchedApplication {
    enum class Kind { desktop, flatpak, snap };
    Kind kind = Kind::desktop;
    std::vector<std::string> ids; ///< without ".desktop", the likeliest first

    bool operator==(const LaunchedApplication&) const = default;
};

/// What the content of a process's cgroup file says; absent where no application is named.
std::optional<LaunchedApplication> launchedApplication(std::string_view cgroupFile);

/// What the kernel knows of a process; empty for one that is gone or may not be read.
struct ProcessFacts {
    std::optional<LaunchedApplication> launched;

    /// The names of the process's own program: as it was called, of the script it runs, of its file.
    /// Interpreters are left out.
    std::vector<std::string> programs;

    /// The files that those of its parents execute that were started together with it. (A script counts as
    /// its interpreter: many programs are started by one and are no guests of it.)
    std::vector<std::string> parentPrograms;

    bool operator==(const ProcessFacts&) const = default;
};

/// `procRoot` is where the kernel's process files are, usually /proc.
ProcessFacts processFacts(const std::filesystem::path& procRoot, ProcessID pid);

/// Reads facts in threads of their own: the kernel keeps a reader of a process's command line or files
/// waiting for as long as that process's memory or a file system of it hangs.
class ProcessFactsReader {
public:
    using Read = std::function<ProcessFacts(ProcessID)>;
    static constexpr std::chrono::milliseconds patience{100};
    static constexpr int maximumWaiting = 4;

    /// `read` is called in other threads, also after the end of this object.
    explicit ProcessFactsReader(Read read) : read_(std::move(read)) {}

    /// Absent when reading takes longer than `patience`, and at once while as many as `maximumWaiting` reads
    /// have not come back.
    std::optional<ProcessFacts> facts(ProcessID pid) const;

private:
    Read read_;
    std::shared_ptr<std::atomic<int>> waiting_ = std::make_shared<std::atomic<int>>(0);
};

/// Together with the number this names a process for all time; absent for one that is gone.
std::optional<std::uint64_t> processStartTime(const std::filesystem::path& procRoot, ProcessID pid);

} // namespace tavrin
