#pragma once

#include "records/saved_layout_entry.h"
#include "records/window_info.h"

#include <string>
#include <variant>

namespace tavrin {

/// What came of moving a window.
struct WindowMoveFailed {
    std::string message; ///< why the window is not (fully) where it should be
    bool operator==(const WindowMoveFailed&) const = default;
};
struct WindowMoved {
    bool operator==(const WindowMoved&) const = default;
};
using WindowMoveOutcome = std::variant<WindowMoveFailed, WindowMoved>;

/// Moves one window.
class WindowMoving {
public:
    virtual ~WindowMoving() = default;

    /// Brings `window` of process `pid` to `target` (points, top-left origin). `entry` is the saved window
    /// it was chosen for; it helps to tell windows of one process apart. Every problem is an outcome.
    virtual WindowMoveOutcome move(ProcessID pid, const SavedLayoutEntry& entry, const WindowInfo& window,
                                   const Rect& target) = 0;
};

} // namespace tavrin
