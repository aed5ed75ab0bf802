#pragma once

#include "ports/runtime.h"

namespace tavrin {

/// The computer's clock.
class SystemWallClock final : public WallClock {
public:
    std::chrono::system_clock::time_point instant() override { return std::chrono::system_clock::now(); }
};

} // namespace tavrin
