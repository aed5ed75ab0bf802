#include "platform/x11/x11_window_reader.h"

#include "platform/x11/x11_property.h"

#include <xcb/res.h>

#include <array>
#include <limits>
#include <map>
#include <set>
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

/// As `X11Window::kind`. The types are listed in order of preference, so the first known one decides; without
/// one this is absent.
std::optional<std::optional<WindowKind>> windowKind(const X11Atoms& atoms,
                                                    const std::vector<std::uint32_t>& types) {
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
    return std::nullopt;
}

} // namespace

struct X11WindowReader::Requests {
    xcb_get_window_attributes_cookie_t attributes{};
    xcb_get_geometry_cookie_t geometry{};
    xcb_translate_coordinates_cookie_t origin{};
    xcb_get_property_cookie_t name{};
    xcb_get_property_cookie_t windowClass{};
    xcb_get_property_cookie_t states{};
    xcb_get_property_cookie_t desktop{};
    xcb_get_property_cookie_t types{};
    xcb_get_property_cookie_t decorations{};
    xcb_get_property_cookie_t shadows{};
    xcb_get_property_cookie_t applicationID{};
};

/// What is asked of a window when the first answers leave it open.
struct X11WindowReader::SecondRequests {
    Task& task;
    WindowPart parts = WindowPart::none;
    xcb_get_property_cookie_t legacyName{};
    xcb_get_property_cookie_t transientFor{};
    xcb_get_property_cookie_t pid{};
    xcb_get_property_cookie_t machine{};
};

X11WindowReader::X11WindowReader(X11Connection& server) : server_(server), hostName_(localHostName()) {}

void X11WindowReader::read(std::span<Task> tasks) const {
    // Asked first, so that its answer does not have to wait for all the others to be kept.
    const auto clientIDs = requestClientIDs(tasks);
    std::vector<Requests> requests;
    requests.reserve(tasks.size());
    for (auto& task : tasks) {
        requests.push_back(send(task));
        if (contains(task.parts, WindowPart::process))
            task.window->clues.pid.reset();
    }
    if (clientIDs)
        collectClientIDs(*clientIDs, tasks);
    std::vector<SecondRequests> second;
    for (std::size_t i = 0; i < tasks.size(); ++i)
        if (const auto open = collect(requests[i], tasks[i]); open != WindowPart::none && !tasks[i].isGone)
            second.push_back(sendSecond(tasks[i], open));
    for (const auto& more : second)
        collectSecond(more);
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
    if (wants(WindowPart::title))
        requests.name = property(atoms.netWmName, titleLimit);
    if (wants(WindowPart::windowClass))
        requests.windowClass = property(XCB_ATOM_WM_CLASS, 2 * nameLimit);
    if (wants(WindowPart::states))
        requests.states = property(atoms.netWmState, listLimit);
    if (wants(WindowPart::desktop))
        requests.desktop = property(atoms.netWmDesktop, 4);
    if (wants(WindowPart::kind))
        requests.types = property(atoms.netWmWindowType, listLimit);
    if (wants(WindowPart::decorations))
        requests.decorations = property(atoms.netFrameExtents, 16);
    if (wants(WindowPart::shadows))
        requests.shadows = property(atoms.gtkFrameExtents, 16);
    if (wants(WindowPart::applicationID))
        requests.applicationID = property(atoms.gtkApplicationId, nameLimit);
    return requests;
}

/// The parts that have to be asked about once more.
WindowPart X11WindowReader::collect(const Requests& requests, Task& task) const {
    const auto& atoms = server_.atoms();
    auto* connection = server_.get();
    auto& window = *task.window;
    auto open = WindowPart::none;
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
        window.title = text(property(requests.name).get(), titleLimit).value_or("");
        if (window.title.empty())
            open = open | WindowPart::title;
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
        const auto kind = windowKind(atoms, cardinals(property(requests.types).get()));
        if (kind)
            window.kind = *kind;
        else
            open = open | WindowPart::kind;
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
    // Whatever process a window claims to be of is only a second choice.
    if (wants(WindowPart::process) && !window.clues.pid)
        open = open | WindowPart::process;
    return open;
}

X11WindowReader::SecondRequests X11WindowReader::sendSecond(Task& task, WindowPart parts) const {
    const auto property = [&](xcb_atom_t atom, std::size_t limit) {
        return requestProperty(server_.get(), task.window->id, atom, limit);
    };
    SecondRequests requests{.task = task, .parts = parts};
    if (contains(parts, WindowPart::title))
        requests.legacyName = property(XCB_ATOM_WM_NAME, titleLimit);
    if (contains(parts, WindowPart::kind))
        requests.transientFor = property(XCB_ATOM_WM_TRANSIENT_FOR, 4);
    if (contains(parts, WindowPart::process)) {
        requests.pid = property(server_.atoms().netWmPid, 4);
        requests.machine = property(XCB_ATOM_WM_CLIENT_MACHINE, nameLimit);
    }
    return requests;
}

void X11WindowReader::collectSecond(const SecondRequests& requests) const {
    auto& window = *requests.task.window;
    const auto property = [&](xcb_get_property_cookie_t cookie) {
        auto reply = owned(xcb_get_property_reply(server_.get(), cookie, nullptr));
        requests.task.isGone |= !reply;
        return reply;
    };
    if (contains(requests.parts, WindowPart::title))
        window.title =
            legacyText(property(requests.legacyName).get(), titleLimit, server_.atoms().compoundText)
                .value_or("");
    if (contains(requests.parts, WindowPart::kind)) {
        const auto leader = cardinal(property(requests.transientFor).get());
        window.kind =
            leader.value_or(XCB_WINDOW_NONE) != XCB_WINDOW_NONE ? WindowKind::dialog : WindowKind::standard;
    }
    if (contains(requests.parts, WindowPart::process)) {
        const auto claimed = cardinal(property(requests.pid).get());
        const auto machine = text(property(requests.machine).get(), nameLimit);
        if (claimed && machine && *machine == hostName_)
            window.clues.pid = processID(*claimed);
    }
}

/// Absent when there is nothing to ask.
std::optional<xcb_res_query_client_ids_cookie_t>
X11WindowReader::requestClientIDs(std::span<const Task> tasks) const {
    std::set<std::uint32_t> clients;
    for (const auto& task : tasks)
        if (contains(task.parts, WindowPart::process))
            clients.insert(server_.clientOf(task.window->id));
    clients.erase(0); // would ask for every client
    if (clients.empty() || !server_.extensions().hasClientIDs)
        return std::nullopt;
    std::vector<xcb_res_client_id_spec_t> questions;
    for (const auto client : clients)
        questions.push_back({client, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
    return xcb_res_query_client_ids(server_.get(), static_cast<std::uint32_t>(questions.size()),
                                    questions.data());
}

void X11WindowReader::collectClientIDs(xcb_res_query_client_ids_cookie_t cookie,
                                       std::span<Task> tasks) const {
    std::map<std::uint32_t, std::optional<ProcessID>> pids;
    const auto reply = owned(xcb_res_query_client_ids_reply(server_.get(), cookie, nullptr));
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
