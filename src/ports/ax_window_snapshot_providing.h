#pragma once

#include "records/ax_window_snapshot.h"

#include <vector>

namespace tavrin {

/// The windows of all running applications as the applications describe them.
class AXWindowSnapshotProviding {
public:
    virtual ~AXWindowSnapshotProviding() = default;

    /// In the order of the applications, then of their windows; empty without permission. Cannot fail.
    virtual std::vector<AXWindowSnapshot> currentSnapshots() = 0;
};

} // namespace tavrin
