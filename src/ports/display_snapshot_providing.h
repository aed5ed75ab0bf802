#pragma once

#include "records/display_snapshot.h"

namespace tavrin {

/// The displays connected now.
class DisplaySnapshotProviding {
public:
    virtual ~DisplaySnapshotProviding() = default;

    /// Sorted by arrangement key; empty when there is no display. Cannot fail.
    virtual DisplaySnapshotCollection currentSnapshot() = 0;
};

} // namespace tavrin
