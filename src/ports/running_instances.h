#pragma once

#include "records/window_info.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A process that may be another copy of this program.
struct InstanceProbe {
    ProcessID pid = 0;
    std::optional<std::string> bundleIdentifier; ///< absent for a process without one

    bool operator==(const InstanceProbe&) const = default;
};

/// The running processes as far as they may be copies of this program.
class RunningInstances {
public:
    virtual ~RunningInstances() = default;

    /// In the platform's order; may include this process. Of several copies that start at the same moment
    /// exactly one sees no other. Empty when the platform cannot tell.
    virtual std::vector<InstanceProbe> runningInstances() = 0;

    /// Brings that process's windows to the front; nothing happens when it is gone.
    virtual void activate(ProcessID pid) = 0;
};

} // namespace tavrin
