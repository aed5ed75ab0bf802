#include "session/app_data_reset_coordinator.h"

namespace tavrin {
namespace {

constexpr auto* resetVersionKey = "tavrin.beta.appDataResetVersion";
constexpr auto* noticePendingKey = "tavrin.beta.resetNoticePending";

} // namespace

AppDataResetCoordinator::Outcome AppDataResetCoordinator::applyIfNeeded() {
    const auto version = defaults_.integer(resetVersionKey);
    // The version is the first thing ever stored: values without it are what is left of a damaged file.
    const bool hasLostVersion = version == 0 && !defaults_.isEmpty();
    // Without a memory the reset would be applied again at every start.
    if (!defaults_.isUsable() || hasLostVersion || version >= targetVersion_)
        return Outcome::alreadyApplied;
    for (const auto& file : {paths_.profilesFile(), paths_.layoutsFile(), paths_.settingsFile()})
        if (paths_.fileManager.exists(file))
            static_cast<void>(paths_.fileManager.rename(file, file.string() + ".before-reset"));
    defaults_.setInteger(resetVersionKey, targetVersion_);
    defaults_.setBoolean(noticePendingKey, true);
    return Outcome::didReset;
}

bool AppDataResetCoordinator::isResetNoticePending() {
    return defaults_.boolean(noticePendingKey);
}

bool AppDataResetCoordinator::consumeResetNotice() {
    if (!isResetNoticePending())
        return false;
    defaults_.setBoolean(noticePendingKey, false);
    return true;
}

} // namespace tavrin
