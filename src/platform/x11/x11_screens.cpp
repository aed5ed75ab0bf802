#include "platform/x11/x11_screens.h"

#include "platform/x11/resource_scale.h"
#include "platform/x11/x11_display_hardware.h"
#include "platform/x11/x11_property.h"
#include "platform/x11/x11_reply.h"
#include "platform/x11/x11_work_areas.h"

namespace tavrin {
namespace {

constexpr std::size_t resourceLimit = 256 * 1024;

} // namespace

double X11Screens::scale() {
    const auto cookie =
        requestProperty(server_.get(), server_.root(), XCB_ATOM_RESOURCE_MANAGER, resourceLimit);
    return resourceScale(bytes(owned(xcb_get_property_reply(server_.get(), cookie, nullptr)).get()));
}

std::vector<DesktopScreen> X11Screens::screens() {
    const auto monitors = collectMonitors(server_, requestMonitors(server_));
    const auto desktopScale = scale();
    const auto hardware = readDisplayHardware(server_, monitors);
    const auto workAreas = readWorkAreas(server_, windowManager_.facts(), monitors);
    const auto primary = primaryArea(monitors);
    std::vector<DesktopScreen> screens;
    bool hasPrimary = false;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        DesktopScreen screen{.frame = desktopSpaceRect(monitors[i].area),
                             .workArea = desktopSpaceRect(workAreas[i]),
                             .scale = desktopScale,
                             .isPrimary = !hasPrimary && monitors[i].area == primary,
                             .hardware = hardware[i]};
        hasPrimary |= screen.isPrimary;
        screens.push_back(std::move(screen));
    }
    return screens;
}

} // namespace tavrin
