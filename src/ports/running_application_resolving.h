#pragma once

#include "records/window_info.h"

#include <optional>

namespace tavrin {

/// Finds the process that owns a window.
class RunningApplicationResolving {
public:
    virtual ~RunningApplicationResolving() = default;

    /// The process, or absent when no running application fits the window.
    virtual std::optional<ProcessID> processIdentifier(const WindowInfo& window) = 0;
};

} // namespace tavrin
