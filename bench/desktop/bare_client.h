#pragma once

#include "support/desktop/x_connection.h"

#include <map>
#include <string>
#include <vector>

namespace tavrin::bench {

/// What a program written straight against XCB would do, with as few round trips as the protocol allows: the
/// mark against which the real program is measured.
class BareClient {
public:
    struct Window {
        xcb_window_t id = XCB_NONE;
        std::string title;
        std::string applicationClass;
        std::uint32_t pid = 0;
        bool isViewable = false;
        Rect client; ///< root pixels, without the frame
        std::array<std::uint32_t, 4> frame{};
    };

    explicit BareClient(const std::string& display);
    ~BareClient();
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    /// Every listed window with what a window list needs to know of it: two round trips.
    std::vector<Window> windows();

    /// Has the window manager place all windows so that the user sees them there, with all requests on their
    /// way at once, and reads all of them back once it has. How many ended at their place.
    std::size_t placeTogether(const std::map<xcb_window_t, Rect>& places);

private:
    void ask(xcb_window_t window, std::uint32_t parts, const Rect& place, const Window& known);
    void awaitWindowManager();
    xcb_atom_t atom(const char* name);

    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
    xcb_window_t fence_ = XCB_NONE;
    std::uint16_t fenceWidth_ = 1;
    xcb_atom_t clientList_, netWmName_, netWmState_, netWmDesktop_, netWmWindowType_, netFrameExtents_,
        netWmPid_, netMoveresizeWindow_;
};

} // namespace tavrin::bench
