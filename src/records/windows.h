#pragma once

#include "base/geometry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavrin {

/// A process identifier.
using ProcessID = std::int32_t;

/// A window on screen, as the window list gives it.
struct WindowInfo {
    std::int64_t id = 0; ///< the window number
    std::string appName;
    std::optional<std::string> bundleIdentifier;
    std::optional<ProcessID> ownerPID;
    std::string title; ///< empty when the window has none
    Rect frame;        ///< points, top-left origin
    bool isOnScreen = false;

    bool operator==(const WindowInfo&) const = default;
};

/// A window as its application describes it; the second source of windows beside the window list.
struct AXWindowSnapshot {
    std::optional<std::string> bundleIdentifier;
    std::string appName;
    std::string title; ///< empty when the window has none
    std::optional<std::string> role;
    std::optional<std::string> subrole;
    Rect frame; ///< points, top-left origin: the space of `WindowInfo::frame`

    bool operator==(const AXWindowSnapshot&) const = default;
};

} // namespace tavrin
