#include "platform/posix/system_wall_clock.h"

namespace tavrin {

std::chrono::system_clock::time_point SystemWallClock::instant() {
    return std::chrono::system_clock::now();
}

} // namespace tavrin
