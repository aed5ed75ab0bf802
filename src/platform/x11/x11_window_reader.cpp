#include "platform/x11/x11_window_reader.h"

#include "platform/x11/x11_property.h"
#include "platform/x11/x11_reply.h"

#include <xcb/res.h>

#include <array>
#include <limits>
#include <map>
#include <unistd.h>
#include <utility>

namespace tavrin {
namespace {

constexpr std::size_t titleLimit = 1024;
constexpr std::size_t nameLimit = 256;
constexpr std::size_t listLimit = 64 * 4;

std::string localHostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

std::optional<ProcessID> processID(std::uint32_t number) {
    if (number == 0 || number > static_cast<std::uint32_t>(std::numeric_limits<ProcessID>::max()))
        return std::nullopt;
    return static_cast<ProcessID>(number);
}

WindowStates windowStates(const X11Atoms& atoms, const std::vector<std::uint32_t>& values) {
    WindowStates states;
    for (const auto value : values) {
        states.isHidden |= value == atoms.netWmStateHidden;
        states.isFullscreen |= value == atoms.netWmStateFullscreen;
        states.isMaximizedHorizontally |= value == atoms.netWmStateMaximizedHorz;
        states.isMaximizedVertically |= value == atoms.netWmStateMaximizedVert;
        states.isShaded |= value == atoms.netWmStateShaded;
    }
    return states;
}

/// The types are listed in order of preference, so the first known one decides.
std::optional<WindowKind> windowKind(const X11Atoms& atoms, const std::vector<std::uint32_t>& types,
                                     bool isTransient) {
    using Meaning = std::pair<xcb_atom_t, std::optional<WindowKind>>;
    const std::array kinds = {
        Meaning{atoms.typeNormal, WindowKind::standard},  Meaning{atoms.typeDialog, WindowKind::dialog},
        Meaning{atoms.typeUtility, WindowKind::floating}, Meaning{atoms.typeToolbar, WindowKind::floating},
        Meaning{atoms.typeDesktop, std::nullopt},         Meaning{atoms.typeDock, std::nullopt},
        Meaning{atoms.typeSplash, std::nullopt},          Meaning{atoms.typeNotification, std::nullopt},
        Meaning{atoms.typeTooltip, std::nullopt},         Meaning{atoms.typeMenu, std::nullopt},
        Meaning{atoms.typeDropdownMenu, std::nullopt},    Meaning{atoms.typePopupMenu, std::nullopt},
        Meaning{atoms.typeCombo, std::nullopt},           Meaning{atoms.typeDnd, std::nullopt},
    };
    for (const auto type : types)
        for (const auto& [atom, kind] : kinds)
            if (type == atom)
                return kind;
    return isTransient ? WindowKind::dialog : WindowKind::standard;
}

} // namespace

struct X11WindowReader::Requests {
    xcb_get_window_attributes_cookie_t attributes{};
    xcb_get_geometry_cookie_t geometry{};
    xcb_translate_coordinates_cookie_t origin{};
    xcb_get_property_cookie_t name{};
    xcb_get_property_cookie_t legacyName{};
    xcb_get_property_cookie_t windowClass{};
    xcb_get_property_cookie_t states{};
    xcb_get_property_cookie_t desktop{};
    xcb_get_property_cookie_t types{};
    xcb_get_property_cookie_t transientFor{};
    xcb_get_property_cookie_t decorations{};
    xcb_get_property_cookie_t shadows{};
    xcb_get_property_cookie_t applicationID{};
    xcb_get_property_cookie_t pid{};
    xcb_get_property_cookie_t machine{};
};

X11WindowReader::X11WindowReader(X11Connection& server) : server_(server), hostName_(localHostName()) {}

void X11WindowReader::read(std::span<Task> tasks) const {
    std::vector<Requests> requests;
    requests.reserve(tasks.size());
    for (const auto& task : tasks)
        requests.push_back(send(task));
    // Asked last and answered first: whatever pid a window claims is only a second choice.
    readClientIDs(tasks);
    for (std::size_t i = 0; i < tasks.size(); ++i)
        collect(requests[i], tasks[i]);
}

X11WindowReader::Requests X11WindowReader::send(const Task& task) const {
    const auto& atoms = server_.atoms();
    auto* connection = server_.get();
    const auto window = task.window->id;
    const auto wants = [&](WindowPart part) { return contains(task.parts, part); };
    const auto property = [&](xcb_atom_t atom, std::size_t limit) {
        return requestProperty(connection, window, atom, limit);
    };
    Requests requests;
    if (wants(WindowPart::visibility))
        requests.attributes = xcb_get_window_attributes(connection, window);
    if (wants(WindowPart::geometry)) {
        requests.geometry = xcb_get_geometry(connection, window);
        requests.origin = xcb_translate_coordinates(connection, window, server_.root(), 0, 0);
    }
    if (wants(WindowPart::title)) {
        requests.name = property(atoms.netWmName, titleLimit);
        requests.legacyName = property(XCB_ATOM_WM_NAME, titleLimit);
    }
    if (wants(WindowPart::windowClass))
        requests.windowClass = property(XCB_ATOM_WM_CLASS, 2 * nameLimit);
    if (wants(WindowPart::states))
        requests.states = property(atoms.netWmState, listLimit);
    if (wants(WindowPart::desktop))
        requests.desktop = property(atoms.netWmDesktop, 4);
    if (wants(WindowPart::kind)) {
        requests.types = property(atoms.netWmWindowType, listLimit);
        requests.transientFor = property(XCB_ATOM_WM_TRANSIENT_FOR, 4);
    }
    if (wants(WindowPart::decorations))
        requests.decorations = property(atoms.netFrameExtents, 16);
    if (wants(WindowPart::shadows))
        requests.shadows = property(atoms.gtkFrameExtents, 16);
    if (wants(WindowPart::applicationID))
        requests.applicationID = property(atoms.gtkApplicationId, nameLimit);
    if (wants(WindowPart::process)) {
        requests.pid = property(atoms.netWmPid, 4);
        requests.machine = property(XCB_ATOM_WM_CLIENT_MACHINE, nameLimit);
    }
    return requests;
}

void X11WindowReader::collect(const Requests& requests, Task& task) const {
    const auto& atoms = server_.atoms();
    auto* connection = server_.get();
    auto& window = *task.window;
    const auto wants = [&](WindowPart part) { return contains(task.parts, part); };
    const auto property = [&](xcb_get_property_cookie_t cookie) {
        auto reply = owned(xcb_get_property_reply(connection, cookie, nullptr));
        task.isGone |= !reply;
        return reply;
    };
    if (wants(WindowPart::visibility)) {
        const auto reply = owned(xcb_get_window_attributes_reply(connection, requests.attributes, nullptr));
        task.isGone |= !reply;
        window.isViewable = reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    if (wants(WindowPart::geometry)) {
        const auto size = owned(xcb_get_geometry_reply(connection, requests.geometry, nullptr));
        const auto origin = owned(xcb_translate_coordinates_reply(connection, requests.origin, nullptr));
        if (size && origin) {
            window.client = {origin->dst_x, origin->dst_y, size->width, size->height};
            window.borderWidth = size->border_width;
        } else {
            task.isGone = true;
        }
    }
    if (wants(WindowPart::title)) {
        const auto name = text(property(requests.name).get(), titleLimit);
        const auto legacyName =
            legacyText(property(requests.legacyName).get(), titleLimit, atoms.compoundText);
        window.title = name ? *name : legacyName.value_or("");
    }
    if (wants(WindowPart::windowClass)) {
        const auto names = texts(property(requests.windowClass).get(), nameLimit);
        const auto nameAt = [&](std::size_t i) {
            return i < names.size() && !names[i].empty() ? std::optional(names[i]) : std::nullopt;
        };
        window.clues.instanceName = nameAt(0);
        window.clues.className = nameAt(1);
    }
    if (wants(WindowPart::states))
        window.states = windowStates(atoms, cardinals(property(requests.states).get()));
    if (wants(WindowPart::desktop))
        window.desktop = cardinal(property(requests.desktop).get());
    if (wants(WindowPart::kind)) {
        const auto types = cardinals(property(requests.types).get());
        const auto transientFor = cardinal(property(requests.transientFor).get());
        window.kind = windowKind(atoms, types, transientFor.value_or(XCB_WINDOW_NONE) != XCB_WINDOW_NONE);
    }
    if (wants(WindowPart::decorations))
        window.decorations = frameInsets(cardinals(property(requests.decorations).get()));
    if (wants(WindowPart::shadows)) {
        const auto values = cardinals(property(requests.shadows).get());
        window.drawsOwnShadows = values.size() == 4;
        window.shadows = frameInsets(values);
    }
    if (wants(WindowPart::applicationID))
        window.clues.applicationID = text(property(requests.applicationID).get(), nameLimit);
    if (wants(WindowPart::process)) {
        const auto claimed = cardinal(property(requests.pid).get());
        const auto machine = text(property(requests.machine).get(), nameLimit);
        if (!window.clues.pid && claimed && machine && *machine == hostName_)
            window.clues.pid = processID(*claimed);
    }
}

void X11WindowReader::readClientIDs(std::span<Task> tasks) const {
    std::map<std::uint32_t, std::optional<ProcessID>> pids;
    for (auto& task : tasks) {
        if (!contains(task.parts, WindowPart::process))
            continue;
        task.window->clues.pid.reset();
        pids.emplace(server_.clientOf(task.window->id), std::nullopt);
    }
    pids.erase(0); // would ask for every client
    std::vector<xcb_res_client_id_spec_t> questions;
    for (const auto& [client, pid] : pids)
        questions.push_back({client, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
    if (questions.empty() || !server_.extensions().hasClientIDs)
        return;
    const auto reply = owned(xcb_res_query_client_ids_reply(
        server_.get(),
        xcb_res_query_client_ids(server_.get(), static_cast<std::uint32_t>(questions.size()),
                                 questions.data()),
        nullptr));
    if (!reply)
        return;
    for (auto id = xcb_res_query_client_ids_ids_iterator(reply.get()); id.rem > 0;
         xcb_res_client_id_value_next(&id))
        if (id.data->spec.mask == XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
            xcb_res_client_id_value_value_length(id.data) > 0)
            pids[server_.clientOf(id.data->spec.client)] =
                processID(xcb_res_client_id_value_value(id.data)[0]);
    for (auto& task : tasks)
        if (contains(task.parts, WindowPart::process))
            if (const auto found = pids.find(server_.clientOf(task.window->id)); found != pids.end())
                task.window->clues.pid = found->second;
}

WindowPart X11WindowReader::partOf(xcb_atom_t property) const {
    const auto& atoms = server_.atoms();
    const std::array parts = {
        std::pair{atoms.netWmName, WindowPart::title},
        std::pair<xcb_atom_t, WindowPart>{XCB_ATOM_WM_NAME, WindowPart::title},
        std::pair<xcb_atom_t, WindowPart>{XCB_ATOM_WM_CLASS, WindowPart::windowClass},
        std::pair{atoms.netWmState, WindowPart::states | WindowPart::visibility},
        std::pair{atoms.wmState, WindowPart::visibility},
        std::pair{atoms.netWmDesktop, WindowPart::desktop | WindowPart::visibility},
        std::pair{atoms.netWmWindowType, WindowPart::kind},
        std::pair<xcb_atom_t, WindowPart>{XCB_ATOM_WM_TRANSIENT_FOR, WindowPart::kind},
        std::pair{atoms.netFrameExtents, WindowPart::decorations | WindowPart::geometry},
        std::pair{atoms.gtkFrameExtents, WindowPart::shadows | WindowPart::geometry},
        std::pair{atoms.gtkApplicationId, WindowPart::applicationID},
        std::pair{atoms.netWmPid, WindowPart::process},
    };
    for (const auto& [atom, part] : parts)
        if (atom == property)
            return part;
    return WindowPart::none;
}

} // namespace tavrin
