#include "ui/apps_pane.h"

#include <algorithm>

namespace tavrin {

std::vector<ListedApplication> AppsPane::excludedApplications() {
    const auto windows = windowProvider_.currentWindows();
    std::vector<ListedApplication> applications;
    for (const std::string& identifier : exclusions.excludedBundleIDs()) {
        const ApplicationIdentity installed = catalog_.installedApplication(identifier);
        const auto window = std::ranges::find(windows, identifier, &WindowInfo::bundleIdentifier);
        const std::string& otherName = window == windows.end() ? identifier : window->appName;
        applications.push_back({identifier, installed.name.value_or(otherName), installed.iconName});
    }
    return applications;
}

std::vector<ListedApplication> AppsPane::openApplications() {
    const auto& excluded = exclusions.excludedBundleIDs();
    std::vector<ListedApplication> applications;
    for (const WindowInfo& window : windowProvider_.currentWindows()) {
        if (!window.bundleIdentifier || window.ownerPID == ownProcess_)
            continue;
        const std::string& identifier = *window.bundleIdentifier;
        if (std::ranges::find(excluded, identifier) == excluded.end() &&
            std::ranges::find(applications, identifier, &ListedApplication::bundleIdentifier) ==
                applications.end())
            applications.push_back(
                {identifier, window.appName, catalog_.installedApplication(identifier).iconName});
    }
    return applications;
}

} // namespace tavrin
