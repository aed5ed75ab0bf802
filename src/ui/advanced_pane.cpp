#include "ui/advanced_pane.h"

#include "ports/runtime.h"
#include "ports/session.h"

#include <fmt/format.h>

namespace tavrin {
namespace {

std::string frameText(const Rect& frame) {
    return fmt::format("{:g}, {:g} · {:g} × {:g}", frame.x, frame.y, frame.width, frame.height);
}

std::string fractionText(const Rect& frame) {
    return fmt::format("{:.3f}, {:.3f} · {:.3f} × {:.3f}", frame.x, frame.y, frame.width, frame.height);
}

} // namespace

std::string TroubleshootingReport::text() const {
    std::string text = "Tavrin troubleshooting\n";
    const auto add = [&](const std::vector<Line>& lines, const char* indent) {
        for (const Line& line : lines)
            text += fmt::format("{}{}: {}\n", indent, line.label, line.value);
    };
    add(program, "");
    text += fmt::format("Data: {}\n\nDisplays\n", dataDirectory.string());
    for (const Display& display : displays) {
        text += display.title + "\n";
        add(display.lines, "    ");
    }
    text += fmt::format("Arrangement: {}\nSetup: {}\n\nLast restore\n", arrangementSignature, setup);
    if (lastAttempt.empty())
        text += "none in this session\n";
    add(lastAttempt, "");
    return text;
}

std::vector<TroubleshootingReport::Display> describeDisplays(const DisplaySnapshotCollection& displays) {
    std::vector<TroubleshootingReport::Display> described;
    for (const DisplaySnapshot& display : displays.displays)
        described.push_back(
            {fmt::format("Display {}{}", described.size() + 1, display.isInternal ? " (built-in)" : ""),
             {{"Identity", display.stableID.value_or("none")},
              {"Key", display.arrangementKey()},
              {"Pixels", fmt::format("{} at scale {}", display.pixelSizeBucket, display.scaleBucket)},
              {"Usable area", frameText(display.visibleFrame)},
              {"Place", fractionText(display.normalizedFrame)}}});
    return described;
}

std::string countsText(const RestoreResult& result) {
    return fmt::format("{} of {} {} in place, {} not open, {} not moved", result.matched, result.totalSaved,
                       result.totalSaved == 1 ? "window" : "windows", result.unmatchedCount,
                       result.moveFailureCount);
}

std::string kindText(SavedLayoutKind kind) {
    return kind == SavedLayoutKind::generic ? "Generic" : "App-specific";
}

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
    subscriptions_.push_back(collaborators_.currentProfileViewModel.setup.subscribe(tell));
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
    for (const std::string& note : attempt->result.notes)
        text += note + "\n";
    return text;
}

void AdvancedPane::setClustersExtraAppWindows(bool isOn) {
    static_cast<void>(collaborators_.settingsStore.change(
        [&](AppSettings& settings) { settings.clusterExtraAppWindows = isOn; }));
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
    const CurrentSetup& current = collaborators_.currentProfileViewModel.setup.value();
    report_ = {.program = {{"Tavrin", orUnknown(collaborators_.host.shortVersion())},
                           {"Program", collaborators_.host.bundlePath().string()},
                           {"Toolkit", orUnknown(desktop.toolkitVersion)},
                           {"Desktop", orUnknown(desktop.desktopName)},
                           {"Window manager", orUnknown(desktop.windowManagerName)},
                           {"Session", orUnknown(desktop.sessionType)},
                           {"Permission", permissionTitle()},
                           {"Shortcuts", desktop.shortcutObstacle.empty()
                                             ? "Available"
                                             : "Cannot work. " + desktop.shortcutObstacle}},
               .displays = describeDisplays(displays),
               .arrangementSignature = MonitorProfileMatcher{}.makeFingerprint(displays).arrangementSignature,
               .setup = current.matchExplanation.value_or("not looked at yet"),
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
