#pragma once

#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_keyboard.h"
#include "platform/x11/x11_query_connection.h"
#include "records/key_combo.h"

#include <functional>
#include <map>
#include <memory>

namespace tavrin {

/// Sees the key presses that go to other applications, without taking them away; also while another
/// program has grabbed the keyboard. Nothing is selected while nobody listens.
class X11KeyMonitor {
public:
    X11KeyMonitor(X11EventConnection& events, X11QueryConnection& query);

    /// `handler` is called for every new press (no repeats, no modifier keys) until the token is released.
    /// An empty token when the server does not show raw keys.
    Token addGlobalMonitor(std::function<void(const KeyEvent&)> handler);

    /// The number in the input layer of a key, by the server's number; absent when its position is unknown.
    std::optional<std::uint32_t> keyPosition(std::uint8_t key);

private:
    void start();
    void stop();
    void handleEvent(const xcb_generic_event_t& event);
    void handlePress(std::uint8_t key);
    const X11Keyboard& keyboard();
    bool isOwnWindow(xcb_window_t window);

    X11EventConnection& events_;
    X11QueryConnection& query_;
    Signal<const KeyEvent&> pressed_;
    X11Keyboard keyboard_;
    HeldKeys held_;
    std::uint8_t modifiers_ = 0; ///< in force, as the last notice told
    bool isKeyboardOutdated_ = true;
    std::map<std::uint32_t, bool> isOwnClient_;
    Token eventToken_;
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

} // namespace tavrin
