#include "platform/x11/x11_key_watch.h"

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_keyboard_protocol.h"
#include "records/key_combo.h"

#include <xcb/res.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <unistd.h>

namespace tavrin {
namespace {

constexpr std::uint16_t keyboardEvents =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;

/// Of clients that are remembered.
constexpr std::size_t clientLimit = 256;

void selectRawKeys(X11EventConnection& events, std::uint32_t mask) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, mask};
    xcb_input_xi_select_events(events.get(), events.root(), 1, &selection.head);
}

} // namespace

X11KeyWatch::X11KeyWatch(X11EventConnection& events, X11QueryConnection& query)
    : events_(events), query_(query) {}

void X11KeyWatch::watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) {
    combos_ = std::move(combos);
    pressed_ = std::move(pressed);
    const bool isWanted = !combos_.empty() && events_.server().extensions().hasRawKeys;
    if (isWanted && !eventToken_)
        start();
    else if (!isWanted && eventToken_)
        stop();
}

std::vector<RefusedKey> X11KeyWatch::refusedKeys() const {
    std::vector<RefusedKey> refused;
    if (const auto reason = obstacle(); !reason.empty())
        for (const auto& combo : combos_)
            refused.push_back({combo, reason});
    return refused;
}

std::string X11KeyWatch::obstacle() const {
    return events_.server().extensions().hasRawKeys
               ? std::string()
               : "This X server does not report key presses to other programs.";
}

void X11KeyWatch::start() {
    eventToken_ = events_.observeEvents([this](const xcb_generic_event_t& event) { handleEvent(event); });
    selectRawKeys(events_, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
    // Notices of the modifiers come in order with the keys, so that a press is judged by the modifiers of
    // its own moment, however late it is read.
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_MODIFIER_STATE;
    details.stateDetails = XCB_XKB_STATE_PART_MODIFIER_STATE;
    const std::uint16_t map = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events_aux(events_.get(), XCB_XKB_ID_USE_CORE_KBD, keyboardEvents, 0,
                              XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY, map,
                              map, &details);
    events_.flush();
    const auto state = owned(xcb_xkb_get_state_reply(
        query_.get(), xcb_xkb_get_state(query_.get(), XCB_XKB_ID_USE_CORE_KBD), nullptr));
    modifiers_ = state ? state->mods : 0;
    held_.clear();
    isKeyboardOutdated_ = true;
}

void X11KeyWatch::stop() {
    eventToken_.release();
    selectRawKeys(events_, 0);
    xcb_xkb_select_events_aux(events_.get(), XCB_XKB_ID_USE_CORE_KBD, keyboardEvents, keyboardEvents, 0, 0, 0,
                              nullptr);
    events_.flush();
}

void X11KeyWatch::handleEvent(const xcb_generic_event_t& event) {
    const auto& extensions = events_.server().extensions();
    const auto type = event.response_type & 0x7f;
    if (type == extensions.xkbFirstEvent) {
        const auto& notice = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
        if (notice.xkbType == XCB_XKB_STATE_NOTIFY)
            modifiers_ = notice.mods;
        else
            isKeyboardOutdated_ = true;
    } else if (type == XCB_GE_GENERIC) {
        const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
        if (raw.extension != extensions.xinputOpcode || raw.detail > 0xFF)
            return;
        const auto key = static_cast<std::uint8_t>(raw.detail);
        if (raw.event_type == XCB_INPUT_RAW_KEY_RELEASE)
            held_.release(key);
        else if (raw.event_type == XCB_INPUT_RAW_KEY_PRESS &&
                 (raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) == 0)
            handlePress(key);
    }
}

void X11KeyWatch::handlePress(std::uint8_t key) {
    const auto code = keyPosition(key).and_then(virtualKeyCode);
    // Most presses are none of ours, whatever the modifiers, and need no question.
    if (!code || std::ranges::find(combos_, *code, &KeyCombo::keyCode) == combos_.end())
        return;
    const auto focusCookie = xcb_get_input_focus(query_.get());
    const auto keymapCookie = xcb_query_keymap(query_.get());
    const auto focus = owned(xcb_get_input_focus_reply(query_.get(), focusCookie, nullptr));
    const auto keymap = owned(xcb_query_keymap_reply(query_.get(), keymapCookie, nullptr));
    if (!focus || !keymap)
        return;
    HeldKeys::DownKeys down;
    std::ranges::copy(keymap->keys, down.begin());
    if (!held_.press(key, down) || isOwnWindow(focus->focus))
        return;
    const KeyEvent press{.keyCode = *code, .modifierFlags = keyboard().modifiers.flags(modifiers_)};
    const auto found =
        std::ranges::find_if(combos_, [&](const KeyCombo& combo) { return combo.matches(press); });
    if (found == combos_.end() || isInputGrabbed())
        return;
    // The callback may have others watched.
    const auto combo = *found;
    if (const auto pressed = pressed_)
        pressed(combo);
}

bool X11KeyWatch::isInputGrabbed() {
    const auto pointer = owned(xcb_grab_pointer_reply(
        query_.get(),
        xcb_grab_pointer(query_.get(), 0, query_.root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                         XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME),
        nullptr));
    xcb_ungrab_pointer(query_.get(), XCB_CURRENT_TIME);
    if (!pointer || pointer->status != XCB_GRAB_STATUS_ALREADY_GRABBED)
        return false;
    const auto keyboard =
        owned(xcb_grab_keyboard_reply(query_.get(),
                                      xcb_grab_keyboard(query_.get(), 0, query_.root(), XCB_CURRENT_TIME,
                                                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                      nullptr));
    xcb_ungrab_keyboard(query_.get(), XCB_CURRENT_TIME);
    return keyboard && keyboard->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

std::optional<std::uint32_t> X11KeyWatch::keyPosition(std::uint8_t key) {
    return keyboard().positions.evdevCode(key);
}

const X11Keyboard& X11KeyWatch::keyboard() {
    // No keymap notifications arrive while nothing is watched, so read it again.
    if (isKeyboardOutdated_ || !eventToken_)
        if (auto keyboard = readKeyboard(query_.server()))
            keyboard_ = std::move(*keyboard);
    isKeyboardOutdated_ = false;
    return keyboard_;
}

bool X11KeyWatch::isOwnWindow(xcb_window_t window) {
    const auto client = query_.server().clientOf(window);
    if (client == 0 || !query_.server().extensions().hasClientIDs)
        return false; // nobody has the focus, or the server itself
    if (const auto known = isOwnClient_.find(client); known != isOwnClient_.end())
        return known->second;
    const xcb_res_client_id_spec_t question{client, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto reply = owned(xcb_res_query_client_ids_reply(
        query_.get(), xcb_res_query_client_ids(query_.get(), 1, &question), nullptr));
    bool isOwn = false;
    if (reply)
        for (auto id = xcb_res_query_client_ids_ids_iterator(reply.get()); id.rem > 0;
             xcb_res_client_id_value_next(&id))
            isOwn |= xcb_res_client_id_value_value_length(id.data) > 0 &&
                     xcb_res_client_id_value_value(id.data)[0] == static_cast<std::uint32_t>(getpid());
    // Numbers of clients are given out again, but this process keeps its connections as long as it runs.
    if (isOwnClient_.size() >= clientLimit)
        isOwnClient_.clear();
    return isOwnClient_[client] = isOwn;
}

} // namespace tavrin
