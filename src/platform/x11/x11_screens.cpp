#include "platform/x11/x11_screens.h"

#include "platform/display_identity/edid.h"
#include "platform/x11/work_area.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_property.h"

#include <fmt/format.h>
#include <xcb/randr.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <utility>

namespace tavrin {
namespace {

constexpr std::size_t resourceLimit = 256 * 1024;
constexpr std::size_t windowLimit = 4096 * 4;
constexpr std::size_t areaLimit = 256 * 16;

constexpr std::uint32_t edidWords = 128 / 4;
constexpr double usualResolution = 96;
constexpr std::string_view blank = " \t\r";

/// A monitor as the server arranges it on the root window.
struct X11Monitor {
    PixelRect area;
    bool isPrimary = false;
    std::vector<xcb_randr_output_t> outputs; ///< all that show it; empty for one made by hand without any
};

/// In the server's order, those that show the same area together as one; empty when no monitor is on. Without
/// RandR monitors the whole root window counts as one.
std::vector<X11Monitor> readMonitors(X11Connection& server) {
    if (!server.extensions().hasMonitors) {
        const auto& screen = server.screen();
        return {{.area = {0, 0, screen.width_in_pixels, screen.height_in_pixels}, .isPrimary = true}};
    }
    const auto reply = owned(xcb_randr_get_monitors_reply(
        server.get(), xcb_randr_get_monitors(server.get(), server.root(), 1), nullptr));
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

/// The one marked as primary, else the one at the root's origin, else the first; without monitors an empty
/// rectangle at the root's origin.
PixelRect primaryArea(std::span<const X11Monitor> monitors) {
    auto found = std::ranges::find_if(monitors, &X11Monitor::isPrimary);
    if (found == monitors.end())
        found = std::ranges::find_if(
            monitors, [](const X11Monitor& monitor) { return monitor.area.x == 0 && monitor.area.y == 0; });
    if (found == monitors.end())
        found = monitors.begin();
    return found == monitors.end() ? PixelRect{} : found->area;
}

struct PixelSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct OutputFacts {
    std::string connector;
    std::optional<EdidIdentity> identity;
    bool isPanel = false;
    xcb_randr_crtc_t crtc = XCB_NONE;
    std::optional<PixelSize> pixels;
};

struct OutputRequests {
    xcb_randr_get_output_info_cookie_t info{};
    xcb_randr_get_output_property_cookie_t edid{};
    xcb_randr_get_output_property_cookie_t connectorType{};
};

struct CrtcRequests {
    xcb_randr_get_crtc_info_cookie_t info{};
    xcb_randr_get_crtc_transform_cookie_t transform{};
};

using Outputs = std::map<xcb_randr_output_t, OutputFacts>;
using Modes = std::map<xcb_randr_mode_t, PixelSize>;

bool isIdentity(const xcb_render_transform_t& matrix) {
    static constexpr xcb_render_fixed_t one = 1 << 16;
    static constexpr xcb_render_transform_t identity = {one, 0, 0, 0, one, 0, 0, 0, one};
    return std::memcmp(&matrix, &identity, sizeof identity) == 0;
}

OutputFacts collectOutput(X11Connection& server, const OutputRequests& requests) {
    auto* connection = server.get();
    const auto info = owned(xcb_randr_get_output_info_reply(connection, requests.info, nullptr));
    const auto edid = owned(xcb_randr_get_output_property_reply(connection, requests.edid, nullptr));
    const auto connectorType =
        owned(xcb_randr_get_output_property_reply(connection, requests.connectorType, nullptr));
    OutputFacts facts;
    if (info) {
        facts.connector.assign(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                               static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get())));
        facts.crtc = info->crtc;
    }
    if (edid && edid->format == 8)
        facts.identity =
            edidIdentity({xcb_randr_get_output_property_data(edid.get()),
                          static_cast<std::size_t>(xcb_randr_get_output_property_data_length(edid.get()))});
    if (connectorType && connectorType->format == 32 &&
        xcb_randr_get_output_property_data_length(connectorType.get()) >= 4) {
        xcb_atom_t type = XCB_ATOM_NONE;
        std::memcpy(&type, xcb_randr_get_output_property_data(connectorType.get()), sizeof type);
        facts.isPanel = type == server.atoms().panel;
    }
    return facts;
}

/// The mode's size as it lies on the desktop: turned, and enlarged or reduced by a transformation.
std::optional<PixelSize> collectCrtc(X11Connection& server, const CrtcRequests& requests,
                                     const Modes& modes) {
    const auto info = owned(xcb_randr_get_crtc_info_reply(server.get(), requests.info, nullptr));
    const auto transform =
        owned(xcb_randr_get_crtc_transform_reply(server.get(), requests.transform, nullptr));
    if (!info)
        return std::nullopt;
    const auto mode = modes.find(info->mode);
    if (mode == modes.end())
        return std::nullopt;
    // The server applies the transformation itself; only the area it reports for panning is no mode size.
    if (transform && !isIdentity(transform->current_transform))
        return PixelSize{info->width, info->height};
    const bool isSideways =
        (info->rotation & (XCB_RANDR_ROTATION_ROTATE_90 | XCB_RANDR_ROTATION_ROTATE_270)) != 0;
    return isSideways ? PixelSize{mode->second.height, mode->second.width} : mode->second;
}

Outputs readOutputs(X11Connection& server, std::span<const X11Monitor> monitors) {
    auto* connection = server.get();
    std::map<xcb_randr_output_t, OutputRequests> outputRequests;
    for (const auto& monitor : monitors)
        for (const auto output : monitor.outputs)
            outputRequests.try_emplace(output);
    if (outputRequests.empty())
        return {};
    const auto resourcesCookie = xcb_randr_get_screen_resources_current(connection, server.root());
    for (auto& [output, requests] : outputRequests) {
        const auto property = [&](xcb_atom_t atom, std::uint32_t words) {
            return xcb_randr_get_output_property(connection, output, atom, XCB_ATOM_ANY, 0, words, 0, 0);
        };
        requests = {xcb_randr_get_output_info(connection, output, XCB_CURRENT_TIME),
                    property(server.atoms().edid, edidWords), property(server.atoms().connectorType, 1)};
    }
    Modes modes;
    if (const auto resources =
            owned(xcb_randr_get_screen_resources_current_reply(connection, resourcesCookie, nullptr)))
        for (auto mode = xcb_randr_get_screen_resources_current_modes_iterator(resources.get()); mode.rem > 0;
             xcb_randr_mode_info_next(&mode))
            modes[mode.data->id] = {mode.data->width, mode.data->height};

    Outputs outputs;
    std::map<xcb_randr_crtc_t, CrtcRequests> crtcRequests;
    for (const auto& [output, requests] : outputRequests) {
        const auto& facts = outputs[output] = collectOutput(server, requests);
        if (facts.crtc != XCB_NONE && !crtcRequests.contains(facts.crtc))
            crtcRequests[facts.crtc] = {xcb_randr_get_crtc_info(connection, facts.crtc, XCB_CURRENT_TIME),
                                        xcb_randr_get_crtc_transform(connection, facts.crtc)};
    }
    for (const auto& [crtc, requests] : crtcRequests) {
        const auto pixels = collectCrtc(server, requests, modes);
        for (auto& [output, facts] : outputs)
            if (facts.crtc == crtc)
                facts.pixels = pixels;
    }
    return outputs;
}

/// Every output that shows each monitor, in the same order. An output without display data is identified by
/// its connector. Two round trips for all.
std::vector<std::vector<DisplayHardware>> readDisplayHardware(X11Connection& server,
                                                              std::span<const X11Monitor> monitors) {
    const auto outputs = readOutputs(server, monitors);
    std::vector<std::vector<DisplayHardware>> hardware;
    for (const auto& monitor : monitors) {
        const PixelSize area{static_cast<std::uint32_t>(monitor.area.width),
                             static_cast<std::uint32_t>(monitor.area.height)};
        auto& ofMonitor = hardware.emplace_back();
        for (const auto number : monitor.outputs) {
            const auto& output = outputs.at(number);
            const auto identity =
                output.identity.value_or(EdidIdentity{.product = connectorNumber(output.connector)});
            const auto pixels = monitor.outputs.size() == 1 ? output.pixels.value_or(area) : area;
            ofMonitor.push_back({.vendorNumber = identity.manufacturer,
                                 .modelNumber = identity.product,
                                 .serialNumber = identity.serial,
                                 .isBuiltin = output.isPanel || isBuiltinConnector(output.connector),
                                 .pixelsWide = pixels.width,
                                 .pixelsHigh = pixels.height});
        }
    }
    return hardware;
}

struct RootFacts {
    PixelRect root;
    std::vector<std::uint32_t> windows;
    std::uint32_t currentDesktop = 0;
    std::vector<std::uint32_t> desktopAreas; ///< four values per desktop, for all monitors together
};

X11Reply<xcb_get_property_reply_t> collect(X11Connection& server, xcb_get_property_cookie_t cookie) {
    return owned(xcb_get_property_reply(server.get(), cookie, nullptr));
}

RootFacts readRoot(X11Connection& server) {
    const auto request = [&](xcb_atom_t atom, std::size_t limit) {
        return requestProperty(server.get(), server.root(), atom, limit);
    };
    const auto geometry = xcb_get_geometry(server.get(), server.root());
    const auto windows = request(server.atoms().netClientListStacking, windowLimit);
    const auto desktop = request(server.atoms().netCurrentDesktop, 4);
    const auto areas = request(server.atoms().netWorkarea, areaLimit);
    RootFacts facts;
    if (const auto size = owned(xcb_get_geometry_reply(server.get(), geometry, nullptr)))
        facts.root = {0, 0, size->width, size->height};
    facts.windows = cardinals(collect(server, windows).get());
    facts.currentDesktop = cardinal(collect(server, desktop).get()).value_or(0);
    facts.desktopAreas = cardinals(collect(server, areas).get());
    return facts;
}

struct DockFacts {
    std::vector<Dock> docks;
    std::vector<std::uint32_t> areasPerMonitor; ///< four values each; may be empty
};

DockFacts readDocks(X11Connection& server, const RootFacts& root) {
    auto* connection = server.get();
    const auto name = fmt::format("_GTK_WORKAREAS_D{}", root.currentDesktop);
    const auto atomCookie =
        xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data());
    struct Requests {
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t plain;
        xcb_get_geometry_cookie_t geometry{};
        xcb_translate_coordinates_cookie_t origin{};
    };
    std::vector<Requests> all;
    for (const auto window : root.windows)
        all.push_back({.partial = requestProperty(connection, window, server.atoms().netWmStrutPartial, 48),
                       .plain = requestProperty(connection, window, server.atoms().netWmStrut, 16)});

    const auto atom = owned(xcb_intern_atom_reply(connection, atomCookie, nullptr));
    const bool isTold = atom && atom->atom != XCB_ATOM_NONE;
    const auto areas = isTold ? requestProperty(connection, server.root(), atom->atom, areaLimit)
                              : xcb_get_property_cookie_t{};
    std::vector<std::pair<Strut, Requests>> reserving;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto partial = strut(cardinals(collect(server, all[i].partial).get()));
        const auto plain = strut(cardinals(collect(server, all[i].plain).get()));
        const auto found = partial ? partial : plain;
        if (!found || found->isEmpty())
            continue;
        all[i].geometry = xcb_get_geometry(connection, root.windows[i]);
        all[i].origin = xcb_translate_coordinates(connection, root.windows[i], server.root(), 0, 0);
        reserving.emplace_back(*found, all[i]);
    }

    DockFacts facts;
    if (isTold)
        facts.areasPerMonitor = cardinals(collect(server, areas).get());
    for (const auto& [reserved, requests] : reserving) {
        const auto size = owned(xcb_get_geometry_reply(connection, requests.geometry, nullptr));
        const auto origin = owned(xcb_translate_coordinates_reply(connection, requests.origin, nullptr));
        if (size && origin)
            facts.docks.push_back({reserved, {origin->dst_x, origin->dst_y, size->width, size->height}});
    }
    return facts;
}

/// What panels leave free of each monitor, in the same order. Where the running window manager tells it per
/// monitor, that counts (a former one may have left its areas behind); otherwise the struts of the panels. At
/// most three round trips.
std::vector<PixelRect> readWorkAreas(X11Connection& server, const WindowManagerFacts& windowManager,
                                     std::span<const X11Monitor> monitors) {
    const auto root = readRoot(server);
    const auto docks = readDocks(server, root);
    std::vector<PixelRect> result;
    for (const auto& monitor : monitors) {
        std::optional<PixelRect> free;
        if (windowManager.supports(server.atoms().gtkWorkareas))
            free = workAreaOn(monitor.area, docks.areasPerMonitor);
        if (!free)
            free = areaWithoutDocks(monitor.area, root.root, docks.docks);
        // With a single monitor the desktop's one work area is exact, margins of the window manager included.
        const auto desktop = std::size_t{root.currentDesktop} * 4;
        if (monitors.size() == 1 && windowManager.supports(server.atoms().netWorkarea) &&
            root.desktopAreas.size() >= desktop + 4)
            if (const auto area = workAreaOn(*free, std::span(root.desktopAreas).subspan(desktop, 4)))
                free = area;
        result.push_back(*free);
    }
    return result;
}

std::string_view withoutBlanks(std::string_view text) {
    const auto begin = text.find_first_not_of(blank);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blank) - begin + 1);
}

} // namespace

double resourceScale(std::string_view resources) {
    double scale = 1;
    while (!resources.empty()) {
        const auto line = resources.substr(0, resources.find('\n'));
        resources.remove_prefix(line.size() < resources.size() ? line.size() + 1 : line.size());
        const auto colon = line.find(':');
        if (colon == std::string_view::npos || withoutBlanks(line.substr(0, colon)) != "Xft.dpi")
            continue;
        const auto value = withoutBlanks(line.substr(colon + 1));
        double resolution = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), resolution);
        if (error == std::errc{} && end == value.data() + value.size() && resolution >= 24 &&
            resolution <= 1536)
            scale = resolution / usualResolution;
    }
    return scale;
}

double X11Screens::scale() {
    const auto cookie =
        requestProperty(server_.get(), server_.root(), XCB_ATOM_RESOURCE_MANAGER, resourceLimit);
    return resourceScale(bytes(owned(xcb_get_property_reply(server_.get(), cookie, nullptr)).get()));
}

Rect X11Screens::primaryFrame() {
    return desktopSpaceRect(primaryArea(readMonitors(server_)));
}

std::vector<DesktopScreen> X11Screens::screens() {
    const auto monitors = readMonitors(server_);
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
