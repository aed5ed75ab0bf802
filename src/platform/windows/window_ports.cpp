#include "platform/windows/window_ports.h"

#include <algorithm>
#include <tuple>

namespace tavrin {
namespace {

/// The other space of the records: origin at the bottom left of the primary screen, y upwards.
DisplayFrame displayFrame(const Rect& rect, const Rect& primary) {
    return {rect.x - primary.x, (primary.y + primary.height) - (rect.y + rect.height), rect.width,
            rect.height};
}

} // namespace

std::optional<std::vector<RawWindowEntry>> WindowSystemWindowList::onScreenWindows() {
    const auto windows = windows_.windows();
    if (!windows)
        return std::nullopt;
    std::vector<RawWindowEntry> entries;
    for (const auto& [window, application] : **windows) {
        if (!window.isOnScreen)
            continue;
        const auto& frame = window.frame;
        const auto& pid = window.application.pid;
        entries.push_back({.number = window.id,
                           .ownerName = application.name,
                           .bounds = RawWindowBounds{frame.x, frame.y, frame.width, frame.height},
                           .name = window.title,
                           .isOnScreen = true,
                           .ownerPID = pid ? std::optional<std::int64_t>(*pid) : std::nullopt,
                           .ownerBundleIdentifier = application.bundleIdentifier});
    }
    return entries;
}

std::vector<RunningApplication> WindowSystemApplications::runningApplications() {
    const auto windows = windows_.windows();
    if (!windows)
        return {};
    std::vector<RunningApplication> all;
    for (const auto& [window, application] : **windows)
        if (window.application.pid)
            all.push_back({.processIdentifier = *window.application.pid,
                           .bundleIdentifier = application.bundleIdentifier,
                           .localizedName = application.name});
    // An order that does not depend on which window is in front.
    const auto key = [](const RunningApplication& application) {
        return std::tie(application.processIdentifier, application.bundleIdentifier);
    };
    std::ranges::stable_sort(all, {}, key);
    const auto repeated = std::ranges::unique(all, {}, key);
    all.erase(repeated.begin(), repeated.end());
    return all;
}

std::optional<RunningApplication> WindowSystemApplications::applicationWithProcessIdentifier(ProcessID pid) {
    const auto all = runningApplications();
    const auto found = std::ranges::find(all, pid, &RunningApplication::processIdentifier);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

std::vector<RunningApplication>
WindowSystemApplications::applicationsWithBundleIdentifier(const std::string& identifier) {
    auto all = runningApplications();
    std::erase_if(all, [&](const auto& application) { return application.bundleIdentifier != identifier; });
    return all;
}

std::vector<Screen> WindowSystemScreens::screens() {
    const auto primary = windows_.primaryFrame();
    std::vector<Screen> screens;
    for (const auto& screen : windows_.screens())
        screens.push_back({.frame = displayFrame(screen.frame, primary),
                           .visibleFrame = displayFrame(screen.workArea, primary),
                           .backingScaleFactor = screen.scale,
                           .hardware = screen.hardware});
    return screens;
}

} // namespace tavrin
