#pragma once

#include "records/window_info.h"

#include <vector>

namespace tavrin {

/// The windows on screen now.
class WindowListProviding {
public:
    virtual ~WindowListProviding() = default;

    /// Sorted by application name, each application's windows front to back; frames in points with a
    /// top-left origin. Empty when nothing can be read. Cannot fail.
    virtual std::vector<WindowInfo> currentWindows() = 0;
};

} // namespace tavrin
