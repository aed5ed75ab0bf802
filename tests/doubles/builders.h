#pragma once

#include "display/monitor_profile_matcher.h"
#include "records/layouts.h"
#include "records/windows.h"

#include <ostream>
#include <string>
#include <vector>

namespace tavrin {

// What a failing assertion prints.
inline void PrintTo(const Rect& rect, std::ostream* out) {
    *out << "(" << rect.x << ", " << rect.y << " " << rect.width << " x " << rect.height << ")";
}
inline void PrintTo(const Uuid& uuid, std::ostream* out) {
    *out << uuid.text();
}

} // namespace tavrin

namespace tavrin::testing {

/// A display that is alone, or the left or right of two equal ones.
inline DisplaySnapshot display(std::string stableID, Rect visibleFrame, Rect normalizedFrame = {0, 0, 1, 1}) {
    return {.stableID = std::move(stableID),
            .normalizedFrame = normalizedFrame,
            .scaleBucket = 1,
            .pixelSizeBucket = "1920x1080",
            .visibleFrame = visibleFrame};
}

/// The setups that tests name: a desk with two monitors side by side, and the left one of them alone.
inline DisplaySnapshotCollection desk() {
    return {{display("1-2-3", {0, 0, 1920, 1050}, {0, 0, 0.5, 1}),
             display("1-2-4", {1920, 0, 1920, 1080}, {0.5, 0, 0.5, 1})}};
}
inline DisplaySnapshotCollection leftAlone() {
    return {{display("1-2-3", {0, 0, 1920, 1050})}};
}

inline MonitorProfile profile(std::string name, const DisplaySnapshotCollection& displays) {
    return {.id = Uuid::random(),
            .name = std::move(name),
            .displayFingerprint = MonitorProfileMatcher{}.makeFingerprint(displays)};
}

inline WindowInfo window(std::int64_t id, std::string application, std::string title, Rect frame) {
    return {.id = id,
            .appName = application,
            .bundleIdentifier = application + ".desktop",
            .ownerPID = 100,
            .title = std::move(title),
            .frame = frame,
            .isOnScreen = true};
}

inline SavedLayoutEntry entry(std::string application, std::string title, Rect frame,
                              std::optional<std::int64_t> slot = {}) {
    return {.id = Uuid::random(),
            .bundleIdentifier = application + ".desktop",
            .appName = application,
            .windowTitle = std::move(title),
            .frame = frame,
            .slotIndex = slot};
}

inline SavedLayout layout(std::string name, std::vector<SavedLayoutEntry> entries,
                          SavedLayoutKind kind = SavedLayoutKind::appSpecific) {
    return {.id = Uuid::random(), .name = std::move(name), .kind = kind, .entries = std::move(entries)};
}

} // namespace tavrin::testing
