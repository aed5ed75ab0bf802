#include "support/desktop/embedding_panel.h"

#include "support/desktop/wait.h"

namespace tavrin::desktop {

namespace {

constexpr std::uint32_t iconSize = 24;
constexpr std::uint32_t requestDock = 0;

template <typename Data>
xcb_client_message_event_t message(xcb_window_t window, xcb_atom_t type, Data data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::copy(data.begin(), data.end(), event.data.data32);
    return event;
}

} // namespace

bool EmbeddingPanel::appear() {
    if (!x_.isOpen())
        return false;
    auto* c = x_.raw();
    window_ = xcb_generate_id(c);
    const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window_, x_.root(), 40, 40, iconSize, iconSize, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_map_window(c, window_);
    x_.onEvent = [this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_CLIENT_MESSAGE)
            return;
        const auto& request = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (request.type == x_.atom("_NET_SYSTEM_TRAY_OPCODE") && request.data.data32[1] == requestDock)
            dock(request.data.data32[2]);
    };

    const auto selection = x_.atom("_NET_SYSTEM_TRAY_S0");
    xcb_set_selection_owner(c, window_, selection, XCB_CURRENT_TIME);
    const Reply<xcb_get_selection_owner_reply_t> owner{
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, selection), nullptr)};
    const auto announcement = message(x_.root(), x_.atom("MANAGER"),
                                      std::array{std::uint32_t{XCB_CURRENT_TIME}, selection, window_});
    xcb_send_event(c, 0, x_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&announcement));
    x_.sync();
    return owner && owner->owner == window_;
}

void EmbeddingPanel::dock(xcb_window_t icon) {
    auto* c = x_.raw();
    icon_ = icon;
    const std::array<std::uint32_t, 2> size{iconSize, iconSize};
    xcb_reparent_window(c, icon, window_, 0, 0);
    xcb_configure_window(c, icon, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size.data());
    xcb_map_window(c, icon);
    constexpr std::uint32_t embeddedNotify = 0;
    const auto welcome = message(icon, x_.atom("_XEMBED"),
                                 std::array<std::uint32_t, 4>{XCB_CURRENT_TIME, embeddedNotify, 0, window_});
    xcb_send_event(c, 0, icon, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&welcome));
    xcb_flush(c);
}

std::optional<Rect> EmbeddingPanel::waitForIcon() {
    auto* c = x_.raw();
    const bool isShown = waitUntil([&] {
        const Reply<xcb_get_window_attributes_reply_t> attributes{
            xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, icon_), nullptr)};
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    });
    if (!isShown)
        return std::nullopt;
    return Rect{40, 40, double{iconSize}, double{iconSize}};
}

} // namespace tavrin::desktop
