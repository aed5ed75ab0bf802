#pragma once

#include "ports/store_error.h"
#include "records/monitor_profile.h"
#include "records/saved_layout.h"

#include <expected>
#include <optional>
#include <vector>

namespace tavrin {

/// Reads the saved display setups and layouts.
class ProfileProviding {
public:
    virtual ~ProfileProviding() = default;

    /// All saved setups in the order of creation; empty when there is no file.
    virtual std::expected<std::vector<MonitorProfile>, StoreError> loadProfiles() = 0;

    /// All layouts of all setups in the order of saving; empty when there is no file.
    virtual std::expected<std::vector<SavedLayout>, StoreError> loadLayouts() = 0;

    /// The layout that automatic restore uses for `profile`; absent when none is chosen.
    virtual std::optional<Uuid> defaultLayoutID(const MonitorProfile& profile) = 0;
};

} // namespace tavrin
