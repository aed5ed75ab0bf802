#pragma once

#include "ports/screen_list.h"
#include "ports/services.h"

namespace tavrin {

/// Turns the platform's screens into snapshots: identity, place within the union of all screens, scale
/// and pixel size.
class DisplaySnapshotProvider : public DisplaySnapshotProviding {
public:
    explicit DisplaySnapshotProvider(ScreenList& screenList) : screenList_(screenList) {}

    DisplaySnapshotCollection currentSnapshot() override;

private:
    ScreenList& screenList_;
};

} // namespace tavrin
