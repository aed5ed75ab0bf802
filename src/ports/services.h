#pragma once

#include "ports/store_error.h"
#include "records/app_settings.h"
#include "records/displays.h"
#include "records/layouts.h"
#include "records/profiles.h"
#include "records/restore_result.h"
#include "records/saved_setups.h"
#include "records/windows.h"

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace tavrin {

/// Whether the desktop lets this program see and move the windows of other applications.
enum class AccessibilityPermissionState { unknown, denied, granted };

/// Tells whether windows of other applications may be read and moved.
class AccessibilityPermissionServicing {
public:
    virtual ~AccessibilityPermissionServicing() = default;

    /// The state now, without asking the user; never `unknown`.
    virtual AccessibilityPermissionState currentState() = 0;

    /// Has the desktop ask the user if the program is not trusted yet, then tells the state.
    virtual AccessibilityPermissionState requestAccess() = 0;

    /// As `requestAccess`, but never asks the user.
    virtual AccessibilityPermissionState recheckAccess() = 0;
};

/// The displays connected now.
class DisplaySnapshotProviding {
public:
    virtual ~DisplaySnapshotProviding() = default;

    /// Sorted by arrangement key; empty when there is no display. Cannot fail.
    virtual DisplaySnapshotCollection currentSnapshot() = 0;
};

/// The windows on screen now.
class WindowListProviding {
public:
    virtual ~WindowListProviding() = default;

    /// Sorted by application name, each application's windows front to back; frames in points with a
    /// top-left origin. Empty when nothing can be read. Cannot fail.
    virtual std::vector<WindowInfo> currentWindows() = 0;
};

/// The windows of all running applications as the applications describe them.
class AXWindowSnapshotProviding {
public:
    virtual ~AXWindowSnapshotProviding() = default;

    /// In the order of the applications, then of their windows; empty without permission. Cannot fail.
    virtual std::vector<AXWindowSnapshot> currentSnapshots() = 0;
};

/// Reads the saved display setups and layouts.
class ProfileProviding {
public:
    virtual ~ProfileProviding() = default;

    /// All saved setups and layouts; empty when there are no files.
    virtual std::expected<SavedSetups, StoreError> load() = 0;

    /// The layout that automatic restore uses for `profile`; absent when none is chosen.
    virtual std::optional<Uuid> defaultLayoutID(const MonitorProfile& profile) = 0;
};

/// Reads what the user chose.
class SettingsProviding {
public:
    virtual ~SettingsProviding() = default;

    /// The settings as they are on disk now; the defaults when there is no file.
    virtual std::expected<AppSettings, StoreError> load() = 0;
};

/// Finds the process that owns a window.
class RunningApplicationResolving {
public:
    virtual ~RunningApplicationResolving() = default;

    /// The process, or absent when no running application fits the window.
    virtual std::optional<ProcessID> processIdentifier(const WindowInfo& window) = 0;
};

/// What came of moving a window.
struct WindowMoveFailed {
    std::string message; ///< why the window is not (fully) where it should be
    bool operator==(const WindowMoveFailed&) const = default;
};
struct WindowMoved {
    std::string note; ///< what is worth knowing all the same; usually empty
    bool operator==(const WindowMoved&) const = default;
};
using WindowMoveOutcome = std::variant<WindowMoveFailed, WindowMoved>;

/// A window to move; for the members see `WindowMoving::move`.
struct WindowMove {
    ProcessID pid = 0;
    const SavedLayoutEntry& entry;
    const WindowInfo& window;
    Rect target;
};

/// Moves windows.
class WindowMoving {
public:
    virtual ~WindowMoving() = default;

    /// Brings `window` of process `pid` to `target` (points, top-left origin). `entry` is the saved window
    /// it was chosen for; it helps to tell windows of one process apart. Every problem is an outcome.
    virtual WindowMoveOutcome move(ProcessID pid, const SavedLayoutEntry& entry, const WindowInfo& window,
                                   const Rect& target) = 0;

    /// Moves many windows. One outcome for each, in order.
    virtual std::vector<WindowMoveOutcome> moveAll(std::span<const WindowMove> moves) {
        std::vector<WindowMoveOutcome> outcomes;
        for (const auto& [pid, entry, window, target] : moves)
            outcomes.push_back(move(pid, entry, window, target));
        return outcomes;
    }
};

/// Puts the windows of a layout back.
class RestoreServicing {
public:
    virtual ~RestoreServicing() = default;

    /// Runs to completion before it returns. Every problem is part of the result.
    virtual RestoreResult restore(const SavedLayout& layout) = 0;
};

} // namespace tavrin
