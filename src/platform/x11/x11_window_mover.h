#pragma once

#include "platform/windows/window_system.h"
#include "platform/x11/x11_window_manager.h"
#include "platform/x11/x11_window_table.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tavrin {

/// Asks the window manager to place windows and waits until it has. The requests for all windows are on their
/// way together; then their geometry is read back together, and what is not in place is asked for again.
class X11WindowMover final : public X11Mirror {
public:
    X11WindowMover(X11QueryConnection& connection, X11WindowTable& table, X11WindowManager& windowManager);

    /// See `WindowSystem`.
    std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements, Seconds patience);

    void handleEvent(const xcb_generic_event_t& event) override;
    void forget() override;

private:
    using Clock = X11QueryConnection::Clock;

    /// A window on its way.
    struct Job {
        xcb_window_t id = XCB_WINDOW_NONE;
        PixelRect wanted;      ///< what the user is to see
        PixelRect before;      ///< what the user saw
        WindowBorders borders; ///< those that the last request was computed with
        FrameInsets pinnedShadows;
        bool wasPinned = false;
        bool wasFullscreen = false;
        int attempts = 0;
        bool isOver = false;
        PlacementOutcome outcome = PlacementOutcome::timedOut;

        void end(PlacementOutcome result) {
            isOver = true;
            outcome = result;
        }
    };

    Job makeJob(const WindowPlacement& placement) const;
    void request(std::span<Job> jobs);
    void judge(std::span<Job> jobs);
    void judge(Job& job);
    void awaitUnpinned(std::span<const Job> jobs, Clock::time_point deadline);
    /// Some clients make themselves fullscreen again, and some window managers draw the frame of a window
    /// that was fullscreen later than they answer. True when windows are to be placed once more.
    bool awaitRelapses(std::span<Job> jobs, Clock::time_point deadline);
    bool awaitFences(Clock::time_point deadline);

    void moveResize(const X11Window& window, const PixelRect& client);
    void configure(const X11Window& window, const PixelRect& client);
    void removeStates(const X11Window& window);
    void requestFence();
    void sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                             const std::array<std::uint32_t, 5>& values);

    X11QueryConnection& connection_;
    X11WindowTable& table_;
    X11WindowManager& windowManager_;

    // Window managers carry out their requests one after the other, a change of this unmanaged window of our
    // own included, so the notice of its change means that everything asked before is done.
    xcb_window_t fenceWindow_ = XCB_WINDOW_NONE;
    std::uint32_t requestedFence_ = 0;
    std::uint32_t answeredFence_ = 0;
};

} // namespace tavrin
