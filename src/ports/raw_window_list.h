#pragma once

#include "records/window_info.h"

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

} // namespace tavrin
