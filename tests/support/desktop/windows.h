#pragma once

#include "support/desktop/x_connection.h"

#include <optional>
#include <set>

namespace tavrin::desktop {

/// The windows on the desktop as a person sees and handles them. Frames are what is visible of a window:
/// title bar and borders included, client-side shadows left out; root pixels, top-left origin.
class Windows {
public:
    explicit Windows(XConnection& connection) : x_(connection) {}

    /// The windows that the window manager keeps, bottom to top.
    std::vector<xcb_window_t> managed();
    /// Every window that is on the screen now, with or without the window manager.
    std::vector<xcb_window_t> shown();
    std::optional<xcb_window_t> find(const std::string& title);
    std::optional<xcb_window_t> waitForTitle(const std::string& title);
    bool waitUntilManaged(xcb_window_t window);

    std::string title(xcb_window_t window);
    std::uint32_t processOf(xcb_window_t window);          ///< as the window itself says; 0 when it does not
    std::optional<Rect> visibleFrame(xcb_window_t window); ///< absent when the window is gone
    bool isMaximised(xcb_window_t window);

    /// Drags and resizes a window so that it is seen at `frame`, and waits until it is there. Windows with
    /// size increments take the nearest size.
    bool place(xcb_window_t window, const Rect& frame);
    bool maximise(xcb_window_t window);
    bool unmaximise(xcb_window_t window);
    void activate(xcb_window_t window);
    void minimise(xcb_window_t window);
    void shade(xcb_window_t window);
    /// Waits until the window manager says that the window is on that desktop, counted from 0.
    bool sendToDesktop(xcb_window_t window, std::uint32_t desktop);
    bool hasState(xcb_window_t window, const std::string& state); ///< by its whole name, "_NET_WM_STATE_…"

    /// From now on the window's changes wake nobody here.
    void ignore(xcb_window_t window);
    bool isFullscreen(xcb_window_t window);
    /// Brings back a window that is minimised or on another desktop.
    bool show(xcb_window_t window);

    /// The process of the window that gets the keys now; 0 when none says so.
    std::uint32_t processWithKeyboard();

    /// The title bar and borders, and the client-side shadows: left, right, top, bottom; zeros when absent.
    std::array<std::uint32_t, 4> frameExtents(xcb_window_t window);
    std::array<std::uint32_t, 4> shadows(xcb_window_t window);

    /// The rectangle of the ancestor directly below the root, as the server knows it.
    std::optional<Rect> outermost(xcb_window_t window);

private:
    std::optional<Rect> clientArea(xcb_window_t window);
    bool isViewable(xcb_window_t window);
    bool changeMaximised(xcb_window_t window, bool isWanted);
    void follow(xcb_window_t window);

    XConnection& x_;
    std::set<xcb_window_t> followed_;
};

} // namespace tavrin::desktop
