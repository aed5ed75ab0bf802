#include "ui/advanced_pane.h"

#include "ports/runtime.h"
#include "ports/session.h"

#include <fmt/format.h>

namespace tavrin {
namespace {

std::string orUnknown(std::string text) {
    return text.empty() ? "unknown" : text;
}

} // namespace

AdvancedPane::AdvancedPane(const SettingsCollaborators& collaborators, bool& isTroubleshootingExpanded)
    : collaborators_(collaborators), isTroubleshootingExpanded_(isTroubleshootingExpanded) {
    const auto tell = [this](const auto&) {
        readReport();
        changed.emit();
    };
    subscriptions_.push_back(collaborators_.permissionStatusViewModel.state.subscribe(tell));
    subscriptions_.push_back(collaborators_.restoreDebugStore.lastAttempt.subscribe(tell));
    subscriptions_.push_back(collaborators_.currentProfileViewModel.matchExplanation.subscribe(tell));
}

void AdvancedPane::appear() {
    if (const auto settings = collaborators_.settingsStore.load())
        clustersExtraAppWindows_ = settings->clusterExtraAppWindows;
    readReport();
    changed.emit();
}

bool AdvancedPane::isPermissionGranted() const {
    return collaborators_.permissionStatusViewModel.state.value() == AccessibilityPermissionState::granted;
}

void AdvancedPane::recheckPermission() {
    collaborators_.permissionStatusViewModel.recheckAndPoll();
}

std::string AdvancedPane::lastAttemptText() const {
    const auto& attempt = lastAttempt();
    if (!attempt)
        return {};
    std::string text =
        fmt::format("Time: {}\nTrigger: {}\nLayout: {}\nKind: {}\nResult: {}\n", iso8601Text(attempt->date),
                    displayName(attempt->trigger), attempt->layoutName, kindText(attempt->layoutKind),
                    countsText(attempt->result));
    for (const std::string& error : attempt->result.errors)
        text += error + "\n";
    return text;
}

void AdvancedPane::setClustersExtraAppWindows(bool isOn) {
    if (auto settings = collaborators_.settingsStore.load()) {
        settings->clusterExtraAppWindows = isOn;
        static_cast<void>(collaborators_.settingsStore.save(*settings));
    }
    // Saved or not, the switch shows what the file holds.
    appear();
}

void AdvancedPane::setTroubleshootingExpanded(bool isExpanded) {
    isTroubleshootingExpanded_ = isExpanded;
    if (isExpanded)
        readReport();
    changed.emit();
}

bool AdvancedPane::openDataDirectory() {
    return collaborators_.linkOpener.openFolder(collaborators_.dataDirectory);
}

void AdvancedPane::readReport() {
    const DesktopFacts desktop = collaborators_.desktopInformation.currentFacts();
    const auto displays = collaborators_.displaySnapshotProvider.currentSnapshot();
    const CurrentProfileViewModel& current = collaborators_.currentProfileViewModel;
    report_ = {.program = {{"Tavrin", orUnknown(collaborators_.host.shortVersion())},
                           {"Program", collaborators_.host.bundlePath().string()},
                           {"Toolkit", orUnknown(desktop.toolkitVersion)},
                           {"Desktop", orUnknown(desktop.desktopName)},
                           {"Window manager", orUnknown(desktop.windowManagerName)},
                           {"Session", orUnknown(desktop.sessionType)},
                           {"Permission", permissionTitle()}},
               .displays = describeDisplays(displays),
               .arrangementSignature = MonitorProfileMatcher{}.makeFingerprint(displays).arrangementSignature,
               .setup = current.matchExplanation.value().value_or("not looked at yet"),
               .dataDirectory = collaborators_.dataDirectory};
    if (const auto& attempt = lastAttempt()) {
        report_.lastAttempt = {{"Time", iso8601Text(attempt->date)},
                               {"Trigger", std::string(displayName(attempt->trigger))},
                               {"Kind", kindText(attempt->layoutKind)},
                               {"Result", countsText(attempt->result)}};
        // They name applications, never windows.
        for (const std::string& error : attempt->result.errors)
            report_.lastAttempt.push_back({"Error", error});
    }
}

} // namespace tavrin
