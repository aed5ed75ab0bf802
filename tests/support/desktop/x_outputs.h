#pragma once

#include "support/desktop/desktop.h"
#include "support/desktop/x_server.h"

#include <xcb/randr.h>

#include <optional>

namespace tavrin::desktop {

/// The monitors of a private Xorg, in root pixels.
class XOutputs final : public Outputs {
public:
    explicit XOutputs(XConnection& connection) : x_(connection) {}

    bool plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity = {}) override;
    bool unplug(int output) override;
    std::vector<Rect> areas() override;
    std::string name(int output) override;

    bool makePrimary(int output);

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

    XConnection& x_;
};

} // namespace tavrin::desktop
