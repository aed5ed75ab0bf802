#include "restore/layout_restorer.h"

namespace tavrin {

std::optional<RestoreResult> LayoutRestorer::restore(const Uuid& layoutID, RestoreTriggerSource trigger) {
    const auto setups = collaborators_.profileProvider.load();
    const SavedLayout* layout = setups ? setups->layout(layoutID) : nullptr;
    return layout ? std::optional(restore(*layout, trigger)) : std::nullopt;
}

RestoreResult LayoutRestorer::restore(const SavedLayout& layout, RestoreTriggerSource trigger) {
    collaborators_.refreshPermission();
    const RestoreResult result = collaborators_.restoreService.restore(layout);
    collaborators_.restoreDebugStore.record(collaborators_.clock.now(), trigger, layout, result);
    restored.emit(result);
    return result;
}

} // namespace tavrin
