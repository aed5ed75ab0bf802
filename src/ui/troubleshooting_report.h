#pragma once

#include "display/monitor_profile_matcher.h"
#include "ports/session.h"
#include "records/restore_result.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// What somebody needs to know who looks into a fault. Titles of windows and names of layouts are not in it.
struct TroubleshootingReport {
    struct Line {
        std::string label;
        std::string value;
        bool operator==(const Line&) const = default;
    };
    struct Display {
        std::string title; ///< for example "Display 1 (built-in)"
        std::vector<Line> lines;
        bool operator==(const Display&) const = default;
    };

    std::vector<Line> program; ///< versions, desktop, permission
    std::vector<Display> displays;
    std::string arrangementSignature;
    std::string setup; ///< the verdict on which saved setup is connected
    std::filesystem::path dataDirectory;
    std::vector<Line> lastAttempt; ///< empty before the first one

    bool operator==(const TroubleshootingReport&) const = default;

    /// The whole report as plain text.
    std::string text() const;
};

/// The lines about the connected displays, as they are recognised.
std::vector<TroubleshootingReport::Display> describeDisplays(const DisplaySnapshotCollection& displays);

/// The counts of a restore in words, for example "4 of 5 windows in place, 1 not open, 0 not moved".
std::string countsText(const RestoreResult& result);

/// The kind of a layout in words.
std::string kindText(SavedLayoutKind kind);

} // namespace tavrin
