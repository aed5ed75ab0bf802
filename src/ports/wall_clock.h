#pragma once

#include "base/timestamp.h"

namespace tavrin {

class WallClock {
public:
    virtual ~WallClock() = default;

    /// The date and time now; may jump when the user sets the clock.
    virtual Timestamp now() = 0;
};

} // namespace tavrin
