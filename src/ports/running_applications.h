#pragma once

#include "records/window_info.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// An application that is running. Where one process hosts several applications, each is listed.
struct RunningApplication {
    ProcessID processIdentifier = 0;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> localizedName;
    bool isTerminated = false;

    bool operator==(const RunningApplication&) const = default;
};

/// The applications that are running and have windows.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    /// All of them, in an order that stays the same while none starts or ends.
    virtual std::vector<RunningApplication> runningApplications() = 0;

    /// The application with that process; the first one where a process hosts several; absent if none.
    virtual std::optional<RunningApplication> applicationWithProcessIdentifier(ProcessID pid) = 0;

    /// The applications with exactly that bundle identifier, in the order of `runningApplications`.
    virtual std::vector<RunningApplication>
    applicationsWithBundleIdentifier(const std::string& identifier) = 0;
};

} // namespace tavrin
