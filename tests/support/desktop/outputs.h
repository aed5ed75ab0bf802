#pragma once

#include "support/desktop/edid.h"
#include "support/desktop/x_connection.h"
#include "support/desktop/x_server.h"

#include <xcb/randr.h>

#include <optional>

namespace tavrin::desktop {

/// The monitors of a private X server, plugged and unplugged as a person would. All rectangles are in root
/// pixels, top-left origin. Outputs are numbered from 0. Every change is finished when the call returns.
class Outputs {
public:
    Outputs(XConnection& connection, XServer::Kind kind) : x_(connection), kind_(kind) {}

    /// Plugs a monitor in, or moves or resizes one that is there. Without an identity it sends no EDID.
    /// On a virtual framebuffer this makes a bare monitor, which has no EDID.
    bool plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity = {});
    bool unplug(int output);
    bool makePrimary(int output);

    /// The areas of all monitors in the server's order.
    std::vector<Rect> areas();
    /// The identification block that a client reads from the output; empty when it has none.
    std::vector<std::uint8_t> edid(int output);
    std::string name(int output) const;

private:
    struct Slot {
        xcb_randr_output_t output = XCB_NONE;
        xcb_randr_crtc_t crtc = XCB_NONE;
    };

    std::optional<Slot> slot(int output);
    xcb_randr_mode_t mode(int width, int height);
    bool setCrtc(const Slot& slot, std::int16_t left, std::int16_t top, xcb_randr_mode_t mode);
    /// Has the server look which outputs are connected; until then toolkits leave a fresh one out.
    void probe();
    bool fitScreen(const std::vector<Rect>& areas);
    bool setMonitor(int output, const Rect& area);

    XConnection& x_;
    XServer::Kind kind_;
};

} // namespace tavrin::desktop
