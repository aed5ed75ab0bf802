#include "capture/window_providers.h"

#include "base/fatal.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tavrin {

namespace {

constexpr std::array<std::string_view, 3> excludedOwnerNames = {"Window Server", "Control Centre",
                                                                "Notification Centre"};

} // namespace

std::vector<WindowInfo> WindowListProvider::currentWindows() {
    std::vector<WindowInfo> windows;
    for (const RawWindowEntry& entry : windowList_.onScreenWindows().value_or(std::vector<RawWindowEntry>{}))
        if (auto usable = window(entry))
            windows.push_back(std::move(*usable));
    std::ranges::stable_sort(windows, {}, &WindowInfo::appName);
    return windows;
}

std::optional<WindowInfo> WindowListProvider::window(const RawWindowEntry& entry) {
    if (!entry.number || !entry.ownerName || !entry.bounds ||
        std::ranges::find(excludedOwnerNames, *entry.ownerName) != excludedOwnerNames.end())
        return std::nullopt;
    WindowInfo window{.id = *entry.number,
                      .appName = *entry.ownerName,
                      .title = entry.name.value_or(""),
                      .frame = {entry.bounds->x.value_or(0), entry.bounds->y.value_or(0),
                                entry.bounds->width.value_or(0), entry.bounds->height.value_or(0)},
                      .isOnScreen = entry.isOnScreen.value_or(false)};
    if (!(window.frame.width >= minimumWindowSize && window.frame.height >= minimumWindowSize))
        return std::nullopt;
    if (entry.ownerPID) {
        if (!std::in_range<ProcessID>(*entry.ownerPID))
            fatal("a process identifier beyond 32 bits");
        window.ownerPID = static_cast<ProcessID>(*entry.ownerPID);
        window.bundleIdentifier = entry.ownerBundleIdentifier;
        if (!window.bundleIdentifier)
            if (const auto owner = runningApplications_.applicationWithProcessIdentifier(*window.ownerPID))
                window.bundleIdentifier = owner->bundleIdentifier;
    }
    return window;
}

std::vector<AXWindowSnapshot> AXWindowSnapshotProvider::currentSnapshots() {
    std::vector<AXWindowSnapshot> snapshots;
    for (const RunningApplication& application : runningApplications_.runningApplications()) {
        if (application.isTerminated || !application.localizedName)
            continue;
        const auto element =
            elements_.applicationElement(application.processIdentifier, application.bundleIdentifier);
        for (const AXElement& window :
             readAttribute<std::vector<AXElement>>(elements_, element, AXAttribute::windows)
                 .value_or(std::vector<AXElement>{}))
            if (auto taken = snapshot(application, window))
                snapshots.push_back(std::move(*taken));
    }
    return snapshots;
}

std::optional<AXWindowSnapshot> AXWindowSnapshotProvider::snapshot(const RunningApplication& application,
                                                                   const AXElement& window) {
    const auto position = readAttribute<Point>(elements_, window, AXAttribute::position);
    if (!position)
        return std::nullopt;
    const auto size = readAttribute<Size>(elements_, window, AXAttribute::size);
    if (!size || !(size->width >= minimumWindowSize && size->height >= minimumWindowSize))
        return std::nullopt;
    return AXWindowSnapshot{
        .bundleIdentifier = application.bundleIdentifier,
        .appName = *application.localizedName,
        .title = readAttribute<std::string>(elements_, window, AXAttribute::title).value_or(""),
        .role = readAttribute<std::string>(elements_, window, AXAttribute::role),
        .subrole = readAttribute<std::string>(elements_, window, AXAttribute::subrole),
        .frame = {position->x, position->y, size->width, size->height}};
}

} // namespace tavrin
