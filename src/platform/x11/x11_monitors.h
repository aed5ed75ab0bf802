#pragma once

#include "platform/x11/window_frame.h"
#include "platform/x11/x11_connection.h"

#include <xcb/randr.h>

#include <span>
#include <vector>

namespace tavrin {

/// A monitor as the server arranges it on the root window.
struct X11Monitor {
    PixelRect area;
    bool isPrimary = false;
    std::vector<xcb_randr_output_t> outputs; ///< all that show it; empty for one made by hand without any
};

/// The two halves of a round trip. Without RandR monitors the whole root window counts as one.
struct MonitorsRequest {
    xcb_randr_get_monitors_cookie_t cookie{};
    bool isSent = false;
};
MonitorsRequest requestMonitors(X11Connection& server);

/// In the server's order, those that show the same area together as one; empty when no monitor is on.
std::vector<X11Monitor> collectMonitors(X11Connection& server, const MonitorsRequest& request);

/// The monitor at whose corner both coordinate spaces begin: the one marked as primary, else the one at the
/// root's origin, else the first; without monitors an empty rectangle at the root's origin.
PixelRect primaryArea(std::span<const X11Monitor> monitors);

} // namespace tavrin
