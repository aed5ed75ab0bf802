#pragma once

#include "platform/wayland/wayland_keyboard.h"
#include "support/desktop/desktop.h"

#include <vector>

namespace tavrin::desktop {

/// The harness's own event loop, for its connections to compositors.
class HarnessLoop final : public EventLoop {
public:
    Token watchReadable(int fileDescriptor, std::function<void()> handler) override;
};

/// A keyboard of a compositor that takes positions of keys from programs.
class PlayedKeyboard : public Keyboard {
public:
    explicit PlayedKeyboard(WaylandConnection& connection) : connection_(connection), keyboard_(connection) {}

    bool press(std::uint32_t symbol) override { return pressWith(std::vector<std::uint32_t>{}, symbol); }
    bool pressWith(std::vector<std::uint32_t> modifiers, std::uint32_t symbol) override;

protected:
    enum class Change { down, up };
    virtual void change(std::uint32_t position, Change change) = 0;

    WaylandConnection& connection_;

private:
    WaylandKeyboard keyboard_;
};

} // namespace tavrin::desktop
