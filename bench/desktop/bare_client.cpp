#include "bare_client.h"

#include <cstring>

namespace tavrin::bench {

using desktop::Reply;

namespace {

std::vector<std::uint32_t> cardinals(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
    return {values, values + reply->value_len};
}

std::string text(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply)), reply->value_len};
}

} // namespace

BareClient::BareClient(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    clientList_ = atom("_NET_CLIENT_LIST_STACKING");
    netWmName_ = atom("_NET_WM_NAME");
    netWmState_ = atom("_NET_WM_STATE");
    netWmDesktop_ = atom("_NET_WM_DESKTOP");
    netWmWindowType_ = atom("_NET_WM_WINDOW_TYPE");
    netFrameExtents_ = atom("_NET_FRAME_EXTENTS");
    netWmPid_ = atom("_NET_WM_PID");
    netMoveresizeWindow_ = atom("_NET_MOVERESIZE_WINDOW");
    // Window managers carry out requests in order, one for an unmanaged window included.
    fence_ = xcb_generate_id(connection_);
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, fence_, root_, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
}

BareClient::~BareClient() {
    xcb_disconnect(connection_);
}

xcb_atom_t BareClient::atom(const char* name) {
    const Reply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr)};
    return reply->atom;
}

std::vector<BareClient::Window> BareClient::windows() {
    auto* c = connection_;
    const auto property = [c](xcb_window_t window, xcb_atom_t name) {
        return xcb_get_property(c, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 256);
    };
    const auto collect = [c](xcb_get_property_cookie_t cookie) {
        return Reply<xcb_get_property_reply_t>{xcb_get_property_reply(c, cookie, nullptr)};
    };
    struct Questions {
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t size;
        xcb_translate_coordinates_cookie_t origin;
        xcb_get_property_cookie_t title, applicationClass, state, desktop, type, frame, pid;
    };
    const auto list = cardinals(Reply<xcb_get_property_reply_t>{
        xcb_get_property_reply(
            c, xcb_get_property(c, 0, root_, clientList_, XCB_GET_PROPERTY_TYPE_ANY, 0, 4096), nullptr)}
                                    .get());
    std::vector<Questions> questions;
    questions.reserve(list.size());
    for (const auto id : list)
        questions.push_back({xcb_get_window_attributes(c, id), xcb_get_geometry(c, id),
                             xcb_translate_coordinates(c, id, root_, 0, 0), property(id, netWmName_),
                             property(id, XCB_ATOM_WM_CLASS), property(id, netWmState_),
                             property(id, netWmDesktop_), property(id, netWmWindowType_),
                             property(id, netFrameExtents_), property(id, netWmPid_)});
    std::vector<Window> windows;
    windows.reserve(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        const auto& asked = questions[i];
        const Reply<xcb_get_window_attributes_reply_t> attributes{
            xcb_get_window_attributes_reply(c, asked.attributes, nullptr)};
        const Reply<xcb_get_geometry_reply_t> size{xcb_get_geometry_reply(c, asked.size, nullptr)};
        const Reply<xcb_translate_coordinates_reply_t> origin{
            xcb_translate_coordinates_reply(c, asked.origin, nullptr)};
        Window window{.id = list[i],
                      .title = text(collect(asked.title).get()),
                      .applicationClass = text(collect(asked.applicationClass).get())};
        static_cast<void>(cardinals(collect(asked.state).get()));
        static_cast<void>(cardinals(collect(asked.desktop).get()));
        static_cast<void>(cardinals(collect(asked.type).get()));
        const auto frame = cardinals(collect(asked.frame).get());
        const auto pid = cardinals(collect(asked.pid).get());
        if (!attributes || !size || !origin)
            continue;
        window.isViewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        window.client = {double(origin->dst_x), double(origin->dst_y), double(size->width),
                         double(size->height)};
        if (frame.size() == window.frame.size())
            std::copy(frame.begin(), frame.end(), window.frame.begin());
        window.pid = pid.empty() ? 0 : pid.front();
        windows.push_back(std::move(window));
    }
    return windows;
}

void BareClient::ask(xcb_window_t window, std::uint32_t parts, const Rect& place, const Window& known) {
    constexpr std::uint32_t northWest = 1, fromPager = 2 << 12;
    const auto [left, right, top, bottom] = known.frame;
    const auto number = [](double value) {
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
    };
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = netMoveresizeWindow_;
    message.data.data32[0] = northWest | parts | fromPager;
    message.data.data32[1] = number(place.x);
    message.data.data32[2] = number(place.y);
    message.data.data32[3] = number(place.width - left - right);
    message.data.data32[4] = number(place.height - top - bottom);
    xcb_send_event(connection_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void BareClient::awaitWindowManager() {
    fenceWidth_ = static_cast<std::uint16_t>(fenceWidth_ % 1000 + 1);
    const std::uint32_t width = fenceWidth_;
    xcb_configure_window(connection_, fence_, XCB_CONFIG_WINDOW_WIDTH, &width);
    xcb_flush(connection_);
    while (const Reply<xcb_generic_event_t> event{xcb_wait_for_event(connection_)}) {
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(*event);
        if ((event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY && change.window == fence_ &&
            change.width == fenceWidth_)
            return;
    }
}

std::size_t BareClient::placeTogether(const std::map<xcb_window_t, Rect>& places) {
    constexpr std::uint32_t allParts = 0xf00;
    struct Asked {
        const Window& window;
        const Rect& place;
        xcb_get_geometry_cookie_t size{};
        xcb_translate_coordinates_cookie_t origin{};
    };
    const auto known = windows();
    std::vector<Asked> asked;
    for (const auto& window : known)
        if (const auto place = places.find(window.id); place != places.end()) {
            ask(window.id, allParts, place->second, window);
            asked.push_back({window, place->second});
        }
    awaitWindowManager();
    for (auto& one : asked) {
        one.size = xcb_get_geometry(connection_, one.window.id);
        one.origin = xcb_translate_coordinates(connection_, one.window.id, root_, 0, 0);
    }
    std::size_t there = 0;
    for (const auto& one : asked) {
        const Reply<xcb_get_geometry_reply_t> size{xcb_get_geometry_reply(connection_, one.size, nullptr)};
        const Reply<xcb_translate_coordinates_reply_t> origin{
            xcb_translate_coordinates_reply(connection_, one.origin, nullptr)};
        const auto [left, right, top, bottom] = one.window.frame;
        there += size && origin && origin->dst_x == one.place.x + left &&
                 origin->dst_y == one.place.y + top && size->width == one.place.width - left - right &&
                 size->height == one.place.height - top - bottom;
    }
    return there;
}

} // namespace tavrin::bench
