#pragma once

#include "base/geometry.h"

#include <optional>
#include <string>

namespace tavrin {

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
