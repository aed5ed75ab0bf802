#include "platform/x11/x11_connection.h"

#include "platform/x11/x11_keyboard_protocol.h"

#include <fmt/format.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/xinput.h>

#include <cstdlib>
#include <span>
#include <string_view>
#include <vector>

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
    std::vector<xcb_randr_get_output_info_cookie_t> cookies;
    for (const auto output : std::span(outputs, resources->num_outputs))
        cookies.push_back(xcb_randr_get_output_info(connection, output, resources->config_timestamp));
    bool isBridge = false;
    for (const auto cookie : cookies)
        if (const auto info = owned(xcb_randr_get_output_info_reply(connection, cookie, nullptr)))
            isBridge |=
                std::string_view(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                                 info->name_len)
                    .starts_with("XWAYLAND");
    return isBridge;
}

} // namespace

std::expected<std::unique_ptr<X11Connection>, std::string>
X11Connection::connect(const std::string& displayName, int& screenNumber) {
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
    return std::unique_ptr<X11Connection>(new X11Connection(displayName, connection, screens.data));
}

// Whatever can be is asked before the first answer is awaited: on a busy machine every wait is long.
std::expected<std::unique_ptr<X11Connection>, std::string>
X11Connection::open(const std::string& displayName) {
    int screenNumber = 0;
    auto result = connect(displayName, screenNumber);
    if (!result)
        return result;
    auto& made = **result;
    auto* connection = made.connection_;
    made.prefetchExtensions();
    static constexpr std::string_view bridge = "XWAYLAND";
    const auto bridgeCookie =
        xcb_query_extension(connection, static_cast<std::uint16_t>(bridge.size()), bridge.data());
    const auto compositor = fmt::format("_NET_WM_CM_S{}", screenNumber);
    const auto compositorCookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(compositor.size()), compositor.data());
    const auto atoms = X11Atoms::intern(connection);
    const auto selection = owned(xcb_intern_atom_reply(connection, compositorCookie, nullptr));
    const auto bridgeReply = owned(xcb_query_extension_reply(connection, bridgeCookie, nullptr));
    made.readExtensions();
    auto& extensions = made.extensions_;
    extensions.isWaylandBridge = (bridgeReply && bridgeReply->present) ||
                                 (extensions.hasMonitors && hasBridgeOutputs(connection, made.root()));
    if (!atoms || made.isBroken())
        return std::unexpected("the X server closed the connection");
    made.atoms_ = *atoms;
    made.compositorSelection_ = selection ? selection->atom : xcb_atom_t{XCB_ATOM_NONE};
    return result;
}

std::expected<std::unique_ptr<X11Connection>, std::string> X11Connection::openAnother() const {
    int screenNumber = 0;
    auto result = connect(displayName_, screenNumber);
    if (!result)
        return result;
    auto& made = **result;
    made.atoms_ = atoms_;
    made.compositorSelection_ = compositorSelection_;
    made.prefetchExtensions();
    made.readExtensions(); // a client gets of each what it has announced that it knows
    made.extensions_.isWaylandBridge = extensions_.isWaylandBridge;
    if (made.isBroken())
        return std::unexpected("the X server closed the connection");
    return result;
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

std::uint32_t X11Connection::clientOf(std::uint32_t resource) const {
    return resource & ~xcb_get_setup(connection_)->resource_id_mask;
}

void X11Connection::prefetchExtensions() {
    for (auto* extension : {&xcb_randr_id, &xcb_res_id, &xcb_input_id, &xcb_xkb_id})
        xcb_prefetch_extension_data(connection_, extension);
}

void X11Connection::readExtensions() {
    const auto find = [this](xcb_extension_t& extension) {
        const auto* data = xcb_get_extension_data(connection_, &extension);
        return data && data->present ? data : nullptr;
    };
    const auto* randr = find(xcb_randr_id);
    const auto* resources = find(xcb_res_id);
    const auto* xinput = find(xcb_input_id);
    const auto* xkb = find(xcb_xkb_id);
    const auto randrCookie =
        randr ? xcb_randr_query_version(connection_, 1, 5) : xcb_randr_query_version_cookie_t{};
    const auto resourcesCookie =
        resources ? xcb_res_query_version(connection_, 1, 2) : xcb_res_query_version_cookie_t{};
    const bool hasKeys = xinput && xkb;
    const auto xinputCookie =
        hasKeys ? xcb_input_xi_query_version(connection_, 2, 2) : xcb_input_xi_query_version_cookie_t{};
    const auto xkbCookie =
        hasKeys ? xcb_xkb_use_extension(connection_, 1, 0) : xcb_xkb_use_extension_cookie_t{};
    if (randr) {
        const auto version = owned(xcb_randr_query_version_reply(connection_, randrCookie, nullptr));
        extensions_.hasMonitors = version && (version->major_version > 1 || version->minor_version >= 5);
        extensions_.randrFirstEvent = randr->first_event;
    }
    if (resources) {
        const auto version = owned(xcb_res_query_version_reply(connection_, resourcesCookie, nullptr));
        extensions_.hasClientIDs = version && (version->server_major > 1 || version->server_minor >= 2);
    }
    if (hasKeys) {
        const auto version = owned(xcb_input_xi_query_version_reply(connection_, xinputCookie, nullptr));
        const auto keyboard = owned(xcb_xkb_use_extension_reply(connection_, xkbCookie, nullptr));
        extensions_.hasRawKeys = version && keyboard && keyboard->supported &&
                                 (version->major_version > 2 || version->minor_version >= 1);
        extensions_.xinputOpcode = xinput->major_opcode;
        extensions_.xkbFirstEvent = xkb->first_event;
    }
}

} // namespace tavrin
