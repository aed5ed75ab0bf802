#pragma once

#include "ports/session.h"

namespace tavrin {

/// Cannot tell, so that every start runs. A real one makes sure that of several copies that start at the
/// same moment exactly one sees no other, and never waits long for a copy that hangs.
class UnsupportedRunningInstances final : public RunningInstances {
public:
    std::vector<InstanceProbe> runningInstances() override { return {}; }
    void activate(ProcessID) override {}
};

} // namespace tavrin
