#pragma once

#include "base/geometry.h"
#include "base/uuid.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavrin {

/// An absolute window frame (top-left origin, y down), an absolute visible frame of a display (bottom-left
/// origin, y up), or fractions of a visible frame: the field that holds it says which.
using SavedLayoutFrame = Rect;

/// One window of a saved layout.
struct SavedLayoutEntry {
    Uuid id;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> appName;
    std::optional<std::string> windowTitle;
    std::optional<std::string> windowRole;
    std::optional<std::string> windowSubrole;
    std::optional<std::string> displayIdentifier;    ///< names one of the layout's saved displays
    SavedLayoutFrame frame;                          ///< points, top-left origin, at capture time
    std::optional<SavedLayoutFrame> normalizedFrame; ///< fractions of that display's visible frame
    std::optional<std::int64_t> slotIndex;           ///< 0, 1, 2 … among the windows of one application

    bool operator==(const SavedLayoutEntry&) const = default;

    static constexpr auto fields() {
        using Self = SavedLayoutEntry;
        return std::tuple{field("id", &Self::id),
                          field("bundleIdentifier", &Self::bundleIdentifier),
                          field("appName", &Self::appName),
                          field("windowTitle", &Self::windowTitle),
                          field("windowRole", &Self::windowRole),
                          field("windowSubrole", &Self::windowSubrole),
                          field("displayIdentifier", &Self::displayIdentifier),
                          field("frame", &Self::frame),
                          field("normalizedFrame", &Self::normalizedFrame),
                          field("slotIndex", &Self::slotIndex)};
    }
};

} // namespace tavrin
