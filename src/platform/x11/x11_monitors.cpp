#include "platform/x11/x11_monitors.h"

#include "platform/x11/x11_reply.h"

#include <algorithm>

namespace tavrin {

MonitorsRequest requestMonitors(X11Connection& server) {
    if (!server.extensions().hasMonitors)
        return {};
    return {xcb_randr_get_monitors(server.get(), server.root(), 1), true};
}

std::vector<X11Monitor> collectMonitors(X11Connection& server, const MonitorsRequest& request) {
    if (!request.isSent) {
        const auto& screen = server.screen();
        return {{.area = {0, 0, screen.width_in_pixels, screen.height_in_pixels}, .isPrimary = true}};
    }
    const auto reply = owned(xcb_randr_get_monitors_reply(server.get(), request.cookie, nullptr));
    if (!reply)
        return {};
    std::vector<X11Monitor> monitors;
    for (auto info = xcb_randr_get_monitors_monitors_iterator(reply.get()); info.rem > 0;
         xcb_randr_monitor_info_next(&info)) {
        const auto* outputs = xcb_randr_monitor_info_outputs(info.data);
        const auto count = xcb_randr_monitor_info_outputs_length(info.data);
        const PixelRect area{info.data->x, info.data->y, info.data->width, info.data->height};
        auto mirror = std::ranges::find(monitors, area, &X11Monitor::area);
        if (mirror == monitors.end())
            mirror = monitors.insert(mirror, {.area = area, .isPrimary = false, .outputs = {}});
        mirror->isPrimary |= info.data->primary != 0;
        mirror->outputs.insert(mirror->outputs.end(), outputs, outputs + count);
    }
    return monitors;
}

PixelRect primaryArea(std::span<const X11Monitor> monitors) {
    auto found = std::ranges::find_if(monitors, &X11Monitor::isPrimary);
    if (found == monitors.end())
        found = std::ranges::find_if(
            monitors, [](const X11Monitor& monitor) { return monitor.area.x == 0 && monitor.area.y == 0; });
    if (found == monitors.end())
        found = monitors.begin();
    return found == monitors.end() ? PixelRect{} : found->area;
}

} // namespace tavrin
