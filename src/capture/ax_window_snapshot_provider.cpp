#include "capture/ax_window_snapshot_provider.h"

#include "capture/window_list_provider.h"

namespace tavrin {

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
