#include "platform/x11/x11_screen_list.h"

#include "platform/x11/resource_scale.h"
#include "platform/x11/x11_display_hardware.h"
#include "platform/x11/x11_property.h"
#include "platform/x11/x11_reply.h"
#include "platform/x11/x11_work_areas.h"

namespace tavrin {
namespace {

constexpr std::size_t resourceLimit = 256 * 1024;

} // namespace

double X11ScreenList::backingScaleFactor() {
    const auto cookie =
        requestProperty(server_.get(), server_.root(), XCB_ATOM_RESOURCE_MANAGER, resourceLimit);
    return resourceScale(bytes(owned(xcb_get_property_reply(server_.get(), cookie, nullptr)).get()));
}

std::vector<Screen> X11ScreenList::screens() {
    const auto monitors = collectMonitors(server_, requestMonitors(server_));
    const auto scale = backingScaleFactor();
    const auto hardware = readDisplayHardware(server_, monitors);
    const auto workAreas = readWorkAreas(server_, windowManager_.facts(), monitors);
    const auto primary = primaryArea(monitors);
    std::vector<Screen> screens;
    for (std::size_t i = 0; i < monitors.size(); ++i)
        screens.push_back({.frame = displaySpaceRect(monitors[i].area, primary),
                           .visibleFrame = displaySpaceRect(workAreas[i], primary),
                           .backingScaleFactor = scale,
                           .hardware = hardware[i]});
    return screens;
}

} // namespace tavrin
