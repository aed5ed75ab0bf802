#include "platform/posix/system_wall_clock.h"

namespace tavrin {

Timestamp SystemWallClock::now() {
    return Timestamp::clock::now();
}

} // namespace tavrin
