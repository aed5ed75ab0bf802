#pragma once

#include "platform/i3/i3_connection.h"
#include "platform/sway/sway_config.h"
#include "platform/wayland/wayland_keyboard.h"
#include "platform/windows/window_system.h"

#include <functional>
#include <vector>

namespace tavrin {

/// Key combinations, bound in sway by the positions of their keys. sway forgets them when the user has it
/// read its configuration again; then they are bound anew. A combination that the configuration binds is
/// left to the user: binding it would silently replace what is there.
class SwayKeys {
public:
    SwayKeys(I3Questions& questions, I3Events& events, WaylandKeyboard& keyboard);
    ~SwayKeys();

    void watch(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed);
    const std::vector<RefusedKey>& refused() const { return refused_; }
    Token observeRefused(std::function<void()> handler) {
        return refusedChanged_.connect(std::move(handler));
    }

private:
    void bind();
    void unbind();
    void handle(I3Event event, const std::string& payload);
    bool isUsers(const KeyCombo& combo, const std::vector<SwayUserBinding>& bindings) const;

    I3Questions& questions_;
    WaylandKeyboard& keyboard_;
    std::vector<KeyCombo> combos_;
    std::function<void(const KeyCombo&)> pressed_;
    std::vector<std::string> bound_; ///< such as "Ctrl+Mod1+10"
    std::vector<RefusedKey> refused_;
    Signal<> refusedChanged_;
    std::vector<Token> watches_;
};

} // namespace tavrin
