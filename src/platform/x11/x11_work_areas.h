#pragma once

#include "platform/x11/x11_monitors.h"

#include <span>
#include <vector>

namespace tavrin {

/// What panels leave free of each monitor, in the same order. Where the window manager tells it per
/// monitor, that counts; otherwise the struts of the panels. At most three round trips.
std::vector<PixelRect> readWorkAreas(X11Connection& server, std::span<const X11Monitor> monitors);

} // namespace tavrin
