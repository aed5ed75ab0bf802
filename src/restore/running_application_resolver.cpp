#include "restore/running_application_resolver.h"

namespace tavrin {

std::optional<ProcessID> RunningApplicationResolver::processIdentifier(const WindowInfo& window) {
    if (window.ownerPID)
        return window.ownerPID;
    if (window.bundleIdentifier) {
        const auto applications =
            runningApplications_.applicationsWithBundleIdentifier(*window.bundleIdentifier);
        if (!applications.empty())
            return applications.front().processIdentifier;
    }
    for (const RunningApplication& application : runningApplications_.runningApplications())
        if (application.localizedName == window.appName)
            return application.processIdentifier;
    return std::nullopt;
}

} // namespace tavrin
