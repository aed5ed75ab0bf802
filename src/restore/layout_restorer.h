#pragma once

#include "base/observable.h"
#include "ports/runtime.h"
#include "ports/services.h"

#include <functional>
#include <optional>

namespace tavrin {

/// Holds the most recent restore attempt of this run; absent until the first one.
class RestoreDebugStore {
public:
    Observable<std::optional<RestoreAttemptDiagnostics>> lastAttempt;

    /// Replaces the record with an attempt to restore `layout` that finished at `date`.
    void record(Timestamp date, RestoreTriggerSource trigger, const SavedLayout& layout,
                const RestoreResult& result) {
        lastAttempt.set(RestoreAttemptDiagnostics{date, trigger, layout.name, layout.kind, result});
    }
};

/// The one way in which the user restores a layout, from wherever: refreshes the permission, restores,
/// records the attempt, and publishes the result.
class LayoutRestorer {
public:
    struct Collaborators {
        ProfileProviding& profileProvider;
        RestoreServicing& restoreService;
        RestoreDebugStore& restoreDebugStore;
        WallClock& clock;
        std::function<void()> refreshPermission; ///< called before each restore
    };

    explicit LayoutRestorer(Collaborators collaborators) : collaborators_(std::move(collaborators)) {}

    /// Emitted with the result of every restore.
    Signal<const RestoreResult&> restored;

    /// Absent, with nothing recorded or published, when the layout is gone or cannot be read.
    std::optional<RestoreResult> restore(const Uuid& layoutID, RestoreTriggerSource trigger);

    /// Restores a layout that was just read.
    RestoreResult restore(const SavedLayout& layout, RestoreTriggerSource trigger);

private:
    Collaborators collaborators_;
};

} // namespace tavrin
