#include "ui/apps_pane.h"

#include <algorithm>

namespace tavrin {

std::vector<OpenApplication> AppsPane::openApplications() {
    const auto& excluded = exclusions.excludedBundleIDs();
    std::vector<OpenApplication> applications;
    for (const WindowInfo& window : windowProvider_.currentWindows()) {
        if (!window.bundleIdentifier || window.ownerPID == ownProcess_)
            continue;
        const std::string& identifier = *window.bundleIdentifier;
        if (std::ranges::find(excluded, identifier) == excluded.end() &&
            std::ranges::find(applications, identifier, &OpenApplication::bundleIdentifier) ==
                applications.end())
            applications.push_back({identifier, window.appName, catalog_.iconName(identifier)});
    }
    return applications;
}

} // namespace tavrin
