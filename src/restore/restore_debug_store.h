#pragma once

#include "base/observable.h"
#include "records/restore_result.h"

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

} // namespace tavrin
