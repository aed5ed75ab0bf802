#include "session/single_instance_guard.h"

namespace tavrin {

std::optional<InstanceProbe> SingleInstanceGuard::otherInstance() {
    for (const InstanceProbe& instance : instances_.runningInstances())
        if (instance.pid != currentPID_ && instance.bundleIdentifier == bundleIdentifier_)
            return instance;
    return std::nullopt;
}

void SingleInstanceGuard::activateOtherInstance() {
    if (const auto other = otherInstance())
        instances_.activate(other->pid);
}

} // namespace tavrin
