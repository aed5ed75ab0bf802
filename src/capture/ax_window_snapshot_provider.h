#pragma once

#include "ports/ax_window_snapshot_providing.h"
#include "ports/running_applications.h"
#include "ports/window_elements.h"

namespace tavrin {

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
