#pragma once

#include "platform/x11/x11_window_manager.h"
#include "platform/x11/x11_window_table.h"
#include "ports/window_elements.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tavrin {

/// Has the window manager place windows, and waits for its answer.
class X11WindowMover final : public X11Mirror {
public:
    X11WindowMover(X11QueryConnection& connection, X11WindowTable& table, X11WindowManager& windowManager);

    /// Puts the upper left corner of what the user sees at `position` (points, top-left origin at the primary
    /// screen). `illegalArgument` for a place no window can have, otherwise as the port of the elements says.
    AXError setPosition(xcb_window_t window, const Point& position);

    /// Gives what the user sees of the window that size. The corner stays where the last `setPosition` wanted
    /// it, even if the window manager would not have the larger or smaller window there before.
    AXError setSize(xcb_window_t window, const Size& size);

    void handleEvent(const xcb_generic_event_t& event) override;
    void forget() override;

private:
    using Clock = X11QueryConnection::Clock;

    struct Target {
        std::optional<std::int32_t> x;
        std::optional<std::int32_t> y;
        std::optional<std::int32_t> width;
        std::optional<std::int32_t> height;
    };
    struct Wish {
        xcb_window_t window = XCB_WINDOW_NONE;
        Point position;
    };

    static PixelRect wantedClient(const X11Window& window, const Target& target);
    AXError place(xcb_window_t window, const Target& target);
    AXError leavePinnedStates(xcb_window_t window);
    void awaitShadows(xcb_window_t window, const FrameInsets& pinnedShadows);
    void moveResize(const X11Window& window, const Target& target, const PixelRect& client);
    void configure(const X11Window& window, const Target& target, const PixelRect& client);
    void removeStates(const X11Window& window);
    bool awaitAnswer(xcb_window_t window);
    void requestFence();
    void sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                             const std::array<std::uint32_t, 5>& values);

    X11QueryConnection& connection_;
    X11WindowTable& table_;
    X11WindowManager& windowManager_;
    std::optional<Wish> wish_;
    std::chrono::milliseconds patience_;

    // Window managers carry out their requests one after the other, a change of this unmanaged window of our
    // own included, so the notice of its change means that everything asked before is done.
    xcb_window_t fenceWindow_ = XCB_WINDOW_NONE;
    std::uint16_t requestedFence_ = 0;
    std::uint16_t answeredFence_ = 0;
};

} // namespace tavrin
