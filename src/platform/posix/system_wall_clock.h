#pragma once

#include "ports/wall_clock.h"

namespace tavrin {

/// The computer's clock.
class SystemWallClock final : public WallClock {
public:
    Timestamp now() override;
};

} // namespace tavrin
