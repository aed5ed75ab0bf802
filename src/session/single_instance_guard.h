#pragma once

#include "ports/session.h"

#include <optional>
#include <string>

namespace tavrin {

/// Keeps one running copy of the program.
class SingleInstanceGuard {
public:
    SingleInstanceGuard(ProcessID currentPID, std::string bundleIdentifier, RunningInstances& instances)
        : currentPID_(currentPID), bundleIdentifier_(std::move(bundleIdentifier)), instances_(instances) {}

    /// The first other process with exactly this program's identifier; absent if there is none.
    std::optional<InstanceProbe> otherInstance();

    /// Brings that process forward; does nothing if it is gone by now.
    void activateOtherInstance();

private:
    ProcessID currentPID_;
    std::string bundleIdentifier_;
    RunningInstances& instances_;
};

} // namespace tavrin
