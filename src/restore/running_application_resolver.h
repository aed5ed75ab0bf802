#pragma once

#include "ports/services.h"
#include "ports/window_list.h"

namespace tavrin {

/// Finds the process of a window: the one it names, else the first running application with its bundle
/// identifier, else the first with exactly its application name.
class RunningApplicationResolver : public RunningApplicationResolving {
public:
    explicit RunningApplicationResolver(RunningApplications& runningApplications)
        : runningApplications_(runningApplications) {}

    std::optional<ProcessID> processIdentifier(const WindowInfo& window) override;

private:
    RunningApplications& runningApplications_;
};

} // namespace tavrin
