#pragma once

#include "ports/runtime.h"

namespace tavrin {

/// The computer's clock.
class SystemWallClock final : public WallClock {
public:
    Timestamp now() override;
};

} // namespace tavrin
