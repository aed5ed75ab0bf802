#include "platform/x11/x11_raw_window_list.h"

namespace tavrin {

std::optional<std::vector<RawWindowEntry>> X11RawWindowList::onScreenWindows() {
    if (!table_.refreshPlaces())
        return std::nullopt;
    std::vector<RawWindowEntry> entries;
    for (const auto* window : table_.windows()) {
        if (window->kind == WindowKind::desktopElement || !table_.isOnScreen(*window))
            continue;
        const auto frame = table_.frame(*window);
        entries.push_back(
            {.number = window->id,
             .ownerName = window->identity.name,
             .bounds = RawWindowBounds{frame.x, frame.y, frame.width, frame.height},
             .name = window->title,
             .isOnScreen = true,
             .ownerPID = window->clues.pid ? std::optional<std::int64_t>(*window->clues.pid) : std::nullopt,
             .ownerBundleIdentifier = window->identity.bundleIdentifier});
    }
    return entries;
}

} // namespace tavrin
