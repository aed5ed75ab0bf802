#pragma once

#include "support/desktop/windows.h"
#include "support/desktop/x_connection.h"

#include <optional>
#include <set>

namespace tavrin::desktop {

/// The windows that X clients opened, as their window manager keeps them; in root pixels.
class XWindows final : public Windows {
public:
    explicit XWindows(XConnection& connection) : x_(connection) {}

    /// The windows that the window manager keeps, bottom to top.
    std::vector<xcb_window_t> managed();
    /// Every window that is on the screen now, with or without the window manager.
    std::vector<xcb_window_t> shown();
    bool waitUntilManaged(xcb_window_t window);
    std::uint32_t processOf(xcb_window_t window); ///< as the window itself says; 0 when it does not
    bool isMaximised(xcb_window_t window);
    bool hasState(xcb_window_t window, const std::string& state); ///< by its whole name, "_NET_WM_STATE_…"
    void minimise(xcb_window_t window);
    void shade(xcb_window_t window);
    /// Waits until the window manager says that the window is on that desktop, counted from 0.
    bool sendToDesktop(xcb_window_t window, std::uint32_t desktop);

    /// From now on the window's changes wake nobody here.
    void ignore(const WindowHandle& window) override;
    bool isFullscreen(const WindowHandle& window) override;
    /// Brings back a window that is minimised or on another desktop.
    bool show(xcb_window_t window);

    std::optional<WindowHandle> find(const std::string& title) override;
    std::optional<WindowHandle> waitForTitle(const std::string& title) override;
    std::optional<WindowHandle> waitForOpened(std::uint32_t number, qint64 pid,
                                              const std::string& title) override;
    std::string title(const WindowHandle& window) override;
    std::optional<Rect> visibleFrame(const WindowHandle& window) override;
    std::optional<Rect> areaOfProcess(qint64 pid) override;
    bool place(const WindowHandle& window, const Rect& frame) override;
    void tell(const WindowHandle& window, const Rect& frame) override;
    bool maximise(const WindowHandle& window) override { return changeMaximised(window, true); }
    bool unmaximise(const WindowHandle& window) override { return changeMaximised(window, false); }
    bool makeFullscreen(const WindowHandle& window) override;
    void activate(const WindowHandle& window) override;
    void close(const WindowHandle& window) override;
    qint64 processWithKeyboard() override;

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
