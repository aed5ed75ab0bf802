#pragma once

#include "records/windows.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The bounds of a window: points, top-left origin at the primary screen. Any part may be missing.
struct RawWindowBounds {
    std::optional<double> x;
    std::optional<double> y;
    std::optional<double> width;
    std::optional<double> height;
};

/// A window as the platform lists it, before any rule is applied: whatever could not be read is absent.
struct RawWindowEntry {
    std::optional<std::int64_t> number;
    std::optional<std::string> ownerName;
    std::optional<RawWindowBounds> bounds;
    std::optional<std::string> name;
    std::optional<bool> isOnScreen;
    std::optional<std::int64_t> ownerPID;
    /// The application the window belongs to, where the platform tells the applications of one process
    /// apart; otherwise absent, and the process decides.
    std::optional<std::string> ownerBundleIdentifier;
};

/// The platform's list of windows.
class RawWindowList {
public:
    virtual ~RawWindowList() = default;

    /// The windows on screen, front to back, without desktop elements (wallpaper, panels, menus,
    /// notifications); absent when the platform does not answer.
    virtual std::optional<std::vector<RawWindowEntry>> onScreenWindows() = 0;
};

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
