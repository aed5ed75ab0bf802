#pragma once

#include "records/display_snapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A display as a place for windows.
struct DisplayPlacementInput {
    std::optional<std::string> stableID;
    std::string fallbackID; ///< the arrangement key
    DisplayFrame visibleFrame;

    bool operator==(const DisplayPlacementInput&) const = default;

    std::string identifier() const { return stableID.value_or(fallbackID); }

    /// Whether a saved display identifier means this display.
    bool isCalled(const std::string& displayIdentifier) const {
        return stableID == displayIdentifier || fallbackID == displayIdentifier;
    }
};

/// The displays of a snapshot as places, in its order.
std::vector<DisplayPlacementInput> placementInputs(const DisplaySnapshotCollection& displays);

} // namespace tavrin
