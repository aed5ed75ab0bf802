#pragma once

#include "base/geometry.h"
#include "base/timestamp.h"
#include "base/uuid.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

/// A display as it was when a layout was saved.
struct SavedDisplay {
    std::string displayIdentifier;
    SavedLayoutFrame visibleFrame; ///< points, bottom-left origin
    bool isInternal = false;

    bool operator==(const SavedDisplay&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("displayIdentifier", &SavedDisplay::displayIdentifier),
                          field("visibleFrame", &SavedDisplay::visibleFrame),
                          field("isInternal", &SavedDisplay::isInternal)};
    }
};

/// Whether a layout remembers which application a window belongs to.
enum class SavedLayoutKind { generic, appSpecific };

/// The texts that stand for the kinds in files.
constexpr auto enumTexts(SavedLayoutKind) {
    return std::array{std::pair{SavedLayoutKind::generic, "generic"},
                      std::pair{SavedLayoutKind::appSpecific, "appSpecific"}};
}

/// A named arrangement of windows for one display setup.
struct SavedLayout {
    Uuid id;
    Uuid profileID;
    std::string name; ///< never empty
    SavedLayoutKind kind = SavedLayoutKind::appSpecific;
    std::vector<SavedLayoutEntry> entries;
    std::optional<std::vector<SavedDisplay>> savedDisplays; ///< absent in layouts without geometry
    Timestamp createdAt;
    Timestamp updatedAt;

    bool operator==(const SavedLayout&) const = default;

    static constexpr auto fields() {
        using Self = SavedLayout;
        return std::tuple{field("id", &Self::id),
                          field("profileID", &Self::profileID),
                          field("name", &Self::name),
                          field("kind", &Self::kind),
                          field("entries", &Self::entries),
                          field("savedDisplays", &Self::savedDisplays),
                          field("createdAt", &Self::createdAt),
                          field("updatedAt", &Self::updatedAt)};
    }
};

} // namespace tavrin
