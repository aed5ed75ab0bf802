#pragma once

#include "platform/x11/x11_monitors.h"
#include "platform/x11/x11_window_manager.h"

#include <span>
#include <vector>

namespace tavrin {

/// What panels leave free of each monitor, in the same order. Where the running window manager tells it per
/// monitor, that counts (a former one may have left its areas behind); otherwise the struts of the panels. At
/// most three round trips.
std::vector<PixelRect> readWorkAreas(X11Connection& server, const WindowManagerFacts& windowManager,
                                     std::span<const X11Monitor> monitors);

} // namespace tavrin
