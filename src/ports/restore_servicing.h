#pragma once

#include "records/restore_result.h"

namespace tavrin {

/// Puts the windows of a layout back.
class RestoreServicing {
public:
    virtual ~RestoreServicing() = default;

    /// Runs to completion before it returns. Every problem is part of the result.
    virtual RestoreResult restore(const SavedLayout& layout) = 0;
};

} // namespace tavrin
