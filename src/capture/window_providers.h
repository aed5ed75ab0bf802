#pragma once

#include "ports/services.h"
#include "ports/window_elements.h"
#include "ports/window_list.h"

namespace tavrin {

/// The smallest width and height, in points, of a window that takes part in layouts.
inline constexpr double minimumWindowSize = 50.0;

/// Turns the platform's window list into windows: unusable entries, the desktop's own helpers and small
/// windows are left out.
class WindowListProvider : public WindowListProviding {
public:
    WindowListProvider(RawWindowList& windowList, RunningApplications& runningApplications)
        : windowList_(windowList), runningApplications_(runningApplications) {}

    std::vector<WindowInfo> currentWindows() override;

private:
    std::optional<WindowInfo> window(const RawWindowEntry& entry);

    RawWindowList& windowList_;
    RunningApplications& runningApplications_;
};

/// Asks every running application for its windows. An application or a window that does not answer is
/// left out.
class AXWindowSnapshotProvider : public AXWindowSnapshotProviding {
public:
    AXWindowSnapshotProvider(RunningApplications& runningApplications, WindowElements& elements)
        : runningApplications_(runningApplications), elements_(elements) {}

    std::vector<AXWindowSnapshot> currentSnapshots() override;

private:
    std::optional<AXWindowSnapshot> snapshot(const RunningApplication& application, const AXElement& window);

    RunningApplications& runningApplications_;
    WindowElements& elements_;
};

} // namespace tavrin
