#include "platform/x11/x11_connection.h"

#include "platform/x11/x11_keyboard_protocol.h"

#include <fmt/format.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace tavrin {
namespace {

std::string connectionProblem(int error) {
    switch (error) {
    case XCB_CONN_CLOSED_PARSE_ERR:
        return "the display name is not valid";
    case XCB_CONN_CLOSED_INVALID_SCREEN:
        return "the server has no such screen";
    case XCB_CONN_CLOSED_EXT_NOTSUPPORTED:
        return "the server lacks a required extension";
    case XCB_CONN_CLOSED_MEM_INSUFFICIENT:
        return "out of memory";
    default:
        return "the server does not answer or refuses the connection";
    }
}

/// Bridges of older versions have no extension that names them, but their outputs have telling names.
bool hasBridgeOutputs(xcb_connection_t* connection, xcb_window_t root) {
    const auto resources = owned(xcb_randr_get_screen_resources_current_reply(
        connection, xcb_randr_get_screen_resources_current(connection, root), nullptr));
    if (!resources)
        return false;
    const auto* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    return std::any_of(outputs, outputs + resources->num_outputs, [&](xcb_randr_output_t output) {
        const auto info = owned(xcb_randr_get_output_info_reply(
            connection, xcb_randr_get_output_info(connection, output, resources->config_timestamp), nullptr));
        return info &&
               std::string_view(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                                info->name_len)
                   .starts_with("XWAYLAND");
    });
}

} // namespace

std::expected<std::unique_ptr<X11Connection>, std::string>
X11Connection::open(const std::string& displayName) {
    int screenNumber = 0;
    auto* connection = xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &screenNumber);
    if (const int error = xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        const char* variable = std::getenv("DISPLAY");
        const std::string shown = !displayName.empty() ? displayName : variable ? variable : "";
        if (shown.empty())
            return std::unexpected("there is no X display: DISPLAY is not set");
        return std::unexpected(
            fmt::format("cannot connect to the X display \"{}\": {}", shown, connectionProblem(error)));
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    std::unique_ptr<X11Connection> result(new X11Connection(connection, screens.data));
    const auto atoms = X11Atoms::intern(connection);
    if (!atoms)
        return std::unexpected("the X server closed the connection");
    result->atoms_ = *atoms;
    const auto compositor = fmt::format("_NET_WM_CM_S{}", screenNumber);
    const auto selection = owned(xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(compositor.size()), compositor.data()),
        nullptr));
    result->compositorSelection_ = selection ? selection->atom : xcb_atom_t{XCB_ATOM_NONE};
    result->readExtensions();
    if (result->isBroken())
        return std::unexpected("the X server closed the connection");
    return result;
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

std::uint32_t X11Connection::clientOf(std::uint32_t resource) const {
    return resource & ~xcb_get_setup(connection_)->resource_id_mask;
}

void X11Connection::readExtensions() {
    for (auto* extension : {&xcb_randr_id, &xcb_res_id, &xcb_input_id, &xcb_xkb_id})
        xcb_prefetch_extension_data(connection_, extension);
    static constexpr std::string_view bridge = "XWAYLAND";
    const auto bridgeCookie =
        xcb_query_extension(connection_, static_cast<std::uint16_t>(bridge.size()), bridge.data());

    const auto* randr = xcb_get_extension_data(connection_, &xcb_randr_id);
    const auto* resources = xcb_get_extension_data(connection_, &xcb_res_id);
    const auto* xinput = xcb_get_extension_data(connection_, &xcb_input_id);
    const auto* xkb = xcb_get_extension_data(connection_, &xcb_xkb_id);
    if (randr && randr->present) {
        const auto version = owned(
            xcb_randr_query_version_reply(connection_, xcb_randr_query_version(connection_, 1, 5), nullptr));
        extensions_.hasMonitors = version && (version->major_version > 1 || version->minor_version >= 5);
        extensions_.randrFirstEvent = randr->first_event;
    }
    if (resources && resources->present) {
        const auto version = owned(
            xcb_res_query_version_reply(connection_, xcb_res_query_version(connection_, 1, 2), nullptr));
        extensions_.hasClientIDs = version && (version->server_major > 1 || version->server_minor >= 2);
    }
    if (xinput && xinput->present && xkb && xkb->present) {
        const auto version = owned(xcb_input_xi_query_version_reply(
            connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
        const auto keyboard = owned(
            xcb_xkb_use_extension_reply(connection_, xcb_xkb_use_extension(connection_, 1, 0), nullptr));
        extensions_.hasRawKeys = version && keyboard && keyboard->supported &&
                                 (version->major_version > 2 || version->minor_version >= 1);
        extensions_.xinputOpcode = xinput->major_opcode;
        extensions_.xkbFirstEvent = xkb->first_event;
    }
    const auto bridgeReply = owned(xcb_query_extension_reply(connection_, bridgeCookie, nullptr));
    extensions_.isWaylandBridge = (bridgeReply && bridgeReply->present) ||
                                  (extensions_.hasMonitors && hasBridgeOutputs(connection_, root()));
}

} // namespace tavrin
