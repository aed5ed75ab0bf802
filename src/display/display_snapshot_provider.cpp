#include "display/display_snapshot_provider.h"

#include "base/fatal.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

namespace tavrin {
namespace {

DisplayFrame normalized(const DisplayFrame& frame, const DisplayFrame& whole) {
    if (!(whole.width > 0 && whole.height > 0))
        return {0, 0, 1, 1};
    return {(frame.minX() - whole.minX()) / whole.width, (frame.minY() - whole.minY()) / whole.height,
            frame.width / whole.width, frame.height / whole.height};
}

std::int64_t scaleBucket(double backingScaleFactor) {
    const double rounded = std::round(backingScaleFactor);
    // 2^63 is the first double beyond the range.
    if (!std::isfinite(rounded) || rounded >= 0x1p63 || rounded < -0x1p63)
        fatal("a display with an impossible scale factor");
    return static_cast<std::int64_t>(rounded);
}

DisplaySnapshot snapshot(const Screen& screen, const DisplayFrame& whole) {
    DisplaySnapshot display{.normalizedFrame = normalized(screen.frame, whole),
                            .scaleBucket = scaleBucket(screen.backingScaleFactor),
                            .pixelSizeBucket = "unknown",
                            .visibleFrame = screen.visibleFrame};
    if (screen.hardware.empty())
        return display;
    // A mirrored screen, or one screen of several panels, is identified by all of its outputs, in any order.
    std::vector<std::string> identities;
    for (const DisplayHardware& hardware : screen.hardware)
        identities.push_back(
            fmt::format("{}-{}-{}", hardware.vendorNumber, hardware.modelNumber, hardware.serialNumber));
    std::ranges::sort(identities);
    display.stableID = fmt::format("{}", fmt::join(identities, "+"));
    const DisplayHardware& first = screen.hardware.front();
    display.pixelSizeBucket = fmt::format("{}x{}", first.pixelsWide, first.pixelsHigh);
    display.isInternal = std::ranges::any_of(screen.hardware, &DisplayHardware::isBuiltin);
    return display;
}

} // namespace

DisplaySnapshotCollection DisplaySnapshotProvider::currentSnapshot() {
    const std::vector<Screen> screens = screenList_.screens();
    if (screens.empty())
        return {};
    DisplayFrame whole = screens.front().frame;
    for (const Screen& screen : screens)
        whole = unionOf(whole, screen.frame);
    DisplaySnapshotCollection collection;
    for (const Screen& screen : screens)
        collection.displays.push_back(snapshot(screen, whole));
    std::ranges::stable_sort(collection.displays, {}, &DisplaySnapshot::arrangementKey);
    return collection;
}

} // namespace tavrin
