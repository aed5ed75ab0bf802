#pragma once

#include "ports/runtime.h"
#include "storage/app_support_paths.h"

#include <cstdint>

namespace tavrin {

/// Starts the program's data files afresh once, the first time a build that demands it starts, and leaves a
/// notice for the settings window. What was there is kept as NAME.before-reset, the latest of each.
class AppDataResetCoordinator {
public:
    static constexpr std::int64_t currentTargetVersion = 1;

    enum class Outcome { didReset, alreadyApplied };

    /// `targetVersion`: the reset this build demands; a reset that was applied before is not repeated.
    AppDataResetCoordinator(AppSupportPaths paths, UserDefaults& defaults,
                            std::int64_t targetVersion = currentTargetVersion)
        : paths_(std::move(paths)), defaults_(defaults), targetVersion_(targetVersion) {}

    /// To be called before anything reads the files. A file that cannot be renamed stays, and the reset
    /// counts as applied all the same. Nothing happens where the user defaults cannot remember it.
    Outcome applyIfNeeded();

    /// A reset happened and the user has not been informed yet.
    bool isResetNoticePending();

    /// As above; from now on the user counts as informed.
    bool consumeResetNotice();

private:
    AppSupportPaths paths_;
    UserDefaults& defaults_;
    std::int64_t targetVersion_;
};

} // namespace tavrin
