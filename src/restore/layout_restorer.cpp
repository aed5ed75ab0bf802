#include "restore/layout_restorer.h"

#include <algorithm>

namespace tavrin {

std::optional<RestoreResult> LayoutRestorer::restore(const Uuid& layoutID, RestoreTriggerSource trigger) {
    const auto layouts = collaborators_.profileProvider.loadLayouts();
    if (!layouts)
        return std::nullopt;
    const auto layout = std::ranges::find(*layouts, layoutID, &SavedLayout::id);
    return layout == layouts->end() ? std::nullopt : std::optional(restore(*layout, trigger));
}

RestoreResult LayoutRestorer::restore(const SavedLayout& layout, RestoreTriggerSource trigger) {
    collaborators_.refreshPermission();
    const RestoreResult result = collaborators_.restoreService.restore(layout);
    collaborators_.restoreDebugStore.record(collaborators_.clock.now(), trigger, layout, result);
    restored.emit(result);
    return result;
}

} // namespace tavrin
