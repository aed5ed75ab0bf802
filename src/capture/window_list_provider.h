#pragma once

#include "ports/raw_window_list.h"
#include "ports/running_applications.h"
#include "ports/window_list_providing.h"

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

} // namespace tavrin
