#include "platform/x11/x11_work_areas.h"

#include "platform/x11/work_area.h"
#include "platform/x11/x11_property.h"
#include "platform/x11/x11_reply.h"

#include <fmt/format.h>

#include <string>

namespace tavrin {
namespace {

constexpr std::size_t windowLimit = 4096 * 4;
constexpr std::size_t areaLimit = 256 * 16;

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
    std::vector<std::uint32_t> areasPerMonitor; ///< four values each; empty where nobody tells them
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

} // namespace

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

} // namespace tavrin
