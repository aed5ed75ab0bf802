#pragma once

#include "base/geometry.h"
#include "base/record_fields.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A rectangle in the displays' space: bottom-left origin at the primary display, y growing upwards.
using DisplayFrame = Rect;

/// One display at one point in time. Deliberately coarse, so that the same physical setup gives the same
/// values every time.
struct DisplaySnapshot {
    std::optional<std::string> stableID; ///< vendor-model-serial; absent for a display without a number
    DisplayFrame normalizedFrame;        ///< fractions of the union of all displays
    std::int64_t scaleBucket = 1;        ///< the backing scale factor as a whole number
    std::string pixelSizeBucket;         ///< for example 2560x1440, or unknown
    bool isInternal = false;             ///< the built-in panel of a portable computer
    DisplayFrame visibleFrame;           ///< points; what panels and docks leave free

    bool operator==(const DisplaySnapshot&) const = default;

    /// Kind, place, scale and pixel size, without the hardware identity: another unit of the same model in
    /// the same place has the same key. For example external:0.000:0.000:1.000:1.000:1:1920x1080.
    std::string arrangementKey() const;

    /// The hardware identity, or the arrangement key of a display without one. Saved windows and displays
    /// refer to a display by this text.
    std::string id() const;

    static constexpr auto fields() {
        return std::tuple{field("stableID", &DisplaySnapshot::stableID),
                          field("normalizedFrame", &DisplaySnapshot::normalizedFrame),
                          field("scaleBucket", &DisplaySnapshot::scaleBucket),
                          field("pixelSizeBucket", &DisplaySnapshot::pixelSizeBucket),
                          field("isInternal", &DisplaySnapshot::isInternal),
                          field("visibleFrame", &DisplaySnapshot::visibleFrame)};
    }
};

/// All displays at one point in time, sorted by arrangement key.
struct DisplaySnapshotCollection {
    std::vector<DisplaySnapshot> displays;

    bool operator==(const DisplaySnapshotCollection&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("displays", &DisplaySnapshotCollection::displays)};
    }
};

/// What identifies a display setup. Both lists inside are sorted on their own, so the n-th identity and
/// the n-th key need not belong to the same display.
struct DisplayFingerprint {
    std::vector<std::string> stableDisplayIDs; ///< sorted; displays without an identity are left out
    std::string arrangementSignature;          ///< the sorted arrangement keys joined with "|"
    std::int64_t displayCount = 0;             ///< all displays, with or without an identity

    bool operator==(const DisplayFingerprint&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("stableDisplayIDs", &DisplayFingerprint::stableDisplayIDs),
                          field("arrangementSignature", &DisplayFingerprint::arrangementSignature),
                          field("displayCount", &DisplayFingerprint::displayCount)};
    }
};

} // namespace tavrin
