#pragma once

#include "base/observable.h"
#include "records/restore_result.h"

#include <optional>

namespace tavrin {

/// Holds the most recent restore attempt of this run; absent until the first one.
class RestoreDebugStore {
public:
    Observable<std::optional<RestoreAttemptDiagnostics>> lastAttempt;
};

} // namespace tavrin
