#pragma once

#include "ports/services.h"
#include "ports/status_item.h"
#include "records/profiles.h"
#include "records/saved_setups.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// Everything that the status item's menu shows.
struct StatusItemMenuContent {
    AccessibilityPermissionState permission = AccessibilityPermissionState::unknown;
    std::optional<std::string> currentProfileName;
    std::optional<std::string> suggestedProfileName;
    std::optional<std::string> matchExplanation;
    bool requiresConfirmation = false;
    std::optional<MonitorProfile> matchedProfile;
    SavedSetups setups;
    std::string
        unreadableFile; ///< the name of the file for which there are no setups; empty when all is well
    std::map<Uuid, KeyCombo> layoutShortcuts;
    std::string version; ///< empty when there is none
};

/// The menu, item by item.
MenuModel statusItemMenu(const StatusItemMenuContent& content);

} // namespace tavrin
