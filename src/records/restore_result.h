#pragma once

#include "records/layouts.h"
#include "records/windows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The outcome of one restore.
struct RestoreResult {
    std::int64_t totalSaved = 0;       ///< entries of the layout
    std::int64_t matched = 0;          ///< entries whose window is in place at the end
    std::int64_t skipped = 0;          ///< entries not brought into place, for any reason
    std::vector<std::string> errors;   ///< problems in words, in the order in which they occurred
    std::int64_t unmatchedCount = 0;   ///< entries for which no window was open
    std::int64_t moveFailureCount = 0; ///< entries whose window was not brought into place
    std::vector<std::string> notes;    ///< what is worth knowing of windows that count as in place

    RestoreResult() = default;

    /// A count that is not given follows from the others and is never negative.
    RestoreResult(std::int64_t totalSaved, std::int64_t matched, std::int64_t skipped,
                  std::vector<std::string> errors, std::optional<std::int64_t> unmatchedCount = {},
                  std::optional<std::int64_t> moveFailureCount = {});

    bool operator==(const RestoreResult&) const = default;

    bool isCompleteSuccess() const { return matched == totalSaved && totalSaved > 0; }
    bool isPartialSuccess() const { return matched >= 1 && (unmatchedCount > 0 || moveFailureCount > 0); }
    bool isMoveFailureOnly() const { return matched == 0 && moveFailureCount > 0; }
    bool isNothingMatched() const { return matched == 0 && moveFailureCount == 0; }
};

/// A saved window, the open window chosen for it, and where that window must go.
struct MatchedPair {
    SavedLayoutEntry savedEntry;
    WindowInfo windowInfo;
    Rect translatedFrame; ///< points, top-left origin, on the displays connected now

    bool operator==(const MatchedPair&) const = default;
};

/// Where a restore was started from.
enum class RestoreTriggerSource { menuBar, shortcut, automation };

/// The name shown for a trigger source, for example "Menu Bar".
std::string_view displayName(RestoreTriggerSource source);

/// The source with exactly that name; absent for any other text.
std::optional<RestoreTriggerSource> restoreTriggerSource(std::string_view displayName);

/// The record of one finished attempt.
struct RestoreAttemptDiagnostics {
    Timestamp date;
    RestoreTriggerSource trigger = RestoreTriggerSource::menuBar;
    std::string layoutName;
    SavedLayoutKind layoutKind = SavedLayoutKind::appSpecific;
    RestoreResult result;

    bool operator==(const RestoreAttemptDiagnostics&) const = default;
};

} // namespace tavrin
