#pragma once

#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_keyboard.h"
#include "platform/x11/x11_query_connection.h"
#include "records/key_combo.h"

#include <functional>
#include <map>
#include <vector>

namespace tavrin {

/// Sees the presses of chosen combinations that go to other applications, without taking them away; also
/// while another program has grabbed the keyboard. Nothing is selected while none is chosen.
class X11KeyWatch {
public:
    X11KeyWatch(X11EventConnection& events, X11QueryConnection& query);

    /// For these see `WindowSystem`.
    void watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed);
    std::vector<RefusedKey> refusedKeys() const;
    std::string obstacle() const;

    /// The number in the input layer of a key, by the server's number; absent when its position is unknown.
    std::optional<std::uint32_t> keyPosition(std::uint8_t key);

private:
    void start();
    void stop();
    void handleEvent(const xcb_generic_event_t& event);
    void handlePress(std::uint8_t key);
    const X11Keyboard& keyboard();
    bool isOwnWindow(xcb_window_t window);
    /// Another program holds keyboard and pointer, as screen lockers do that tell nobody of the lock.
    bool isInputGrabbed();

    X11EventConnection& events_;
    X11QueryConnection& query_;
    std::vector<KeyCombo> combos_;
    std::function<void(const KeyCombo&)> pressed_;
    X11Keyboard keyboard_;
    HeldKeys held_;
    std::uint8_t modifiers_ = 0; ///< in force, by the last notice
    bool isKeyboardOutdated_ = true;
    std::map<std::uint32_t, bool> isOwnClient_;
    Token eventToken_;
};

} // namespace tavrin
