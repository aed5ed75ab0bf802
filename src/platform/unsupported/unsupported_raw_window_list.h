#pragma once

#include "ports/window_list.h"

namespace tavrin {

/// No answer, which is not the same as no windows. A real one lists the windows on screen from front to
/// back with frames as the user sees them (title bar included, shadows not), asks for all of them in a
/// constant number of round trips, and leaves absent what it could not read.
class UnsupportedRawWindowList final : public RawWindowList {
public:
    std::optional<std::vector<RawWindowEntry>> onScreenWindows() override { return std::nullopt; }
};

} // namespace tavrin
