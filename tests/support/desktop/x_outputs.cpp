#include "support/desktop/x_outputs.h"

namespace tavrin::desktop {

namespace {

bool succeeded(xcb_connection_t* connection, xcb_void_cookie_t cookie) {
    return !Reply<xcb_generic_error_t>{xcb_request_check(connection, cookie)};
}

} // namespace

std::string XOutputs::name(int output) {
    return "DUMMY" + std::to_string(output);
}

std::optional<XOutputs::Slot> XOutputs::slot(int output) {
    auto* c = x_.raw();
    const auto cookie = xcb_randr_get_screen_resources_current(c, x_.root());
    Reply<xcb_randr_get_screen_resources_current_reply_t> resources{
        xcb_randr_get_screen_resources_current_reply(c, cookie, nullptr)};
    if (!resources || output >= resources->num_outputs || output >= resources->num_crtcs)
        return std::nullopt;
    // The dummy driver gives each output a crtc of its own, in the same order.
    return Slot{xcb_randr_get_screen_resources_current_outputs(resources.get())[output],
                xcb_randr_get_screen_resources_current_crtcs(resources.get())[output]};
}

xcb_randr_mode_t XOutputs::mode(int width, int height) {
    auto* c = x_.raw();
    const std::string wanted = "desktop-" + std::to_string(width) + "x" + std::to_string(height);
    const auto cookie = xcb_randr_get_screen_resources_current(c, x_.root());
    Reply<xcb_randr_get_screen_resources_current_reply_t> resources{
        xcb_randr_get_screen_resources_current_reply(c, cookie, nullptr)};
    if (!resources)
        return XCB_NONE;
    const auto* names =
        reinterpret_cast<const char*>(xcb_randr_get_screen_resources_current_names(resources.get()));
    const auto* modes = xcb_randr_get_screen_resources_current_modes(resources.get());
    for (int index = 0; index < resources->num_modes; names += modes[index++].name_len)
        if (std::string(names, modes[index].name_len) == wanted)
            return modes[index].id;

    xcb_randr_mode_info_t info{};
    info.width = static_cast<std::uint16_t>(width);
    info.height = static_cast<std::uint16_t>(height);
    info.hsync_start = static_cast<std::uint16_t>(width + 40);
    info.hsync_end = static_cast<std::uint16_t>(width + 80);
    info.htotal = static_cast<std::uint16_t>(width + 160);
    info.vsync_start = static_cast<std::uint16_t>(height + 3);
    info.vsync_end = static_cast<std::uint16_t>(height + 6);
    info.vtotal = static_cast<std::uint16_t>(height + 40);
    info.dot_clock = 60U * info.htotal * info.vtotal;
    info.name_len = static_cast<std::uint16_t>(wanted.size());
    Reply<xcb_randr_create_mode_reply_t> created{xcb_randr_create_mode_reply(
        c, xcb_randr_create_mode(c, x_.root(), info, info.name_len, wanted.data()), nullptr)};
    return created ? created->mode : XCB_NONE;
}

bool XOutputs::setCrtc(const Slot& slot, std::int16_t left, std::int16_t top, xcb_randr_mode_t mode) {
    auto* c = x_.raw();
    const auto cookie =
        xcb_randr_set_crtc_config(c, slot.crtc, XCB_CURRENT_TIME, XCB_CURRENT_TIME, left, top, mode,
                                  XCB_RANDR_ROTATION_ROTATE_0, mode == XCB_NONE ? 0 : 1, &slot.output);
    Reply<xcb_randr_set_crtc_config_reply_t> reply{xcb_randr_set_crtc_config_reply(c, cookie, nullptr)};
    return reply && reply->status == XCB_RANDR_SET_CONFIG_SUCCESS;
}

bool XOutputs::fitScreen(const std::vector<Rect>& areas) {
    Rect whole;
    for (const Rect& area : areas)
        whole = unionOf(whole, area);
    if (areas.empty())
        return true;
    auto* c = x_.raw();
    const auto width = static_cast<std::uint16_t>(whole.maxX());
    const auto height = static_cast<std::uint16_t>(whole.maxY());
    const Reply<xcb_get_geometry_reply_t> now{
        xcb_get_geometry_reply(c, xcb_get_geometry(c, x_.root()), nullptr)};
    if (now && now->width == width && now->height == height)
        return true;
    // 96 pixels to the inch
    return succeeded(c, xcb_randr_set_screen_size_checked(c, x_.root(), width, height, width * 254U / 960U,
                                                          height * 254U / 960U));
}

bool XOutputs::plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity) {
    auto* c = x_.raw();
    const auto target = slot(output);
    const auto wantedMode = mode(static_cast<int>(area.width), static_cast<int>(area.height));
    if (!target || wantedMode == XCB_NONE)
        return false;
    if (identity) {
        const auto block = makeEdid(*identity);
        xcb_randr_change_output_property(c, target->output, x_.atom("EDID"), XCB_ATOM_INTEGER, 8,
                                         XCB_PROP_MODE_REPLACE, block.size(), block.data());
    } else {
        xcb_randr_delete_output_property(c, target->output, x_.atom("EDID"));
    }
    xcb_randr_add_output_mode(c, target->output, wantedMode);

    // The screen must hold the output before and after; other clients see only the finished change.
    xcb_grab_server(c);
    setCrtc(*target, 0, 0, XCB_NONE);
    auto remaining = areas();
    remaining.push_back(area);
    const bool done = fitScreen(remaining) && setCrtc(*target, static_cast<std::int16_t>(area.x),
                                                      static_cast<std::int16_t>(area.y), wantedMode);
    xcb_ungrab_server(c);
    probe();
    return done;
}

void XOutputs::probe() {
    auto* c = x_.raw();
    const Reply<xcb_randr_get_screen_resources_reply_t> resources{
        xcb_randr_get_screen_resources_reply(c, xcb_randr_get_screen_resources(c, x_.root()), nullptr)};
    x_.sync();
}

bool XOutputs::unplug(int output) {
    auto* c = x_.raw();
    const auto target = slot(output);
    if (!target)
        return false;
    xcb_grab_server(c);
    const bool done = setCrtc(*target, 0, 0, XCB_NONE) && fitScreen(areas());
    xcb_ungrab_server(c);
    probe();
    return done;
}

bool XOutputs::makePrimary(int output) {
    const auto target = slot(output);
    if (!target)
        return false;
    const bool done =
        succeeded(x_.raw(), xcb_randr_set_output_primary_checked(x_.raw(), x_.root(), target->output));
    x_.sync();
    return done;
}

std::vector<Rect> XOutputs::areas() {
    auto* c = x_.raw();
    Reply<xcb_randr_get_monitors_reply_t> reply{
        xcb_randr_get_monitors_reply(c, xcb_randr_get_monitors(c, x_.root(), 1), nullptr)};
    std::vector<Rect> areas;
    if (!reply)
        return areas;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
         xcb_randr_monitor_info_next(&it))
        areas.push_back(
            {double(it.data->x), double(it.data->y), double(it.data->width), double(it.data->height)});
    return areas;
}

} // namespace tavrin::desktop
