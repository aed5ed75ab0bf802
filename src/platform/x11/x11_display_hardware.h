#pragma once

#include "platform/x11/x11_monitors.h"
#include "ports/screen_list.h"

#include <span>
#include <vector>

namespace tavrin {

/// The hardware behind each monitor, in the same order: every output that shows it; none for a monitor made
/// by hand without one. An output without display data is identified by its connector. Two round trips for
/// all.
std::vector<std::vector<DisplayHardware>> readDisplayHardware(X11Connection& server,
                                                              std::span<const X11Monitor> monitors);

} // namespace tavrin
