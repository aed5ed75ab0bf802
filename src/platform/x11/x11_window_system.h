#pragma once

#include "platform/i3/i3_tiled_windows.h"
#include "platform/windows/window_system.h"
#include "platform/x11/x11_desktop_watch.h"
#include "platform/x11/x11_key_watch.h"
#include "platform/x11/x11_window_mover.h"

#include <expected>
#include <memory>
#include <string>

namespace tavrin {

/// An X server with a window manager that follows EWMH. A point is a pixel; desktop space is the root window.
class X11WindowSystem final : public WindowSystem {
public:
    /// The error is a text for the user. An empty display name means the one of the environment. The
    /// collaborators must outlive the window system.
    static std::expected<std::unique_ptr<X11WindowSystem>, std::string>
    open(const std::string& displayName, EventLoop& eventLoop, Scheduler& scheduler);

    /// The same over a connection that is there already.
    static std::expected<std::unique_ptr<X11WindowSystem>, std::string>
    open(std::unique_ptr<X11Connection> connection, EventLoop& eventLoop, Scheduler& scheduler);

    std::string name() override;
    std::optional<WindowSystemObstacle> obstacle() override;
    std::expected<WindowListing, WindowSystemObstacle> list() override;
    std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements,
                                        Seconds patience) override;
    std::vector<DesktopScreen> screens() override;
    void watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) override;
    std::vector<RefusedKey> refusedKeys() override;
    std::string keyObstacle() override { return keyWatch_.obstacle(); }
    std::optional<std::uint32_t> keyPosition(std::uint32_t nativeScanCode) override;
    bool activate(WindowID window, const std::string& token) override;
    std::optional<Point> pointer() override;
    Token observe(WindowSystemEvent event, std::function<void()> handler) override;

private:
    X11WindowSystem(std::unique_ptr<X11Connection> questions, std::unique_ptr<X11Connection> news,
                    EventLoop& eventLoop, Scheduler& scheduler);

    DesktopWindow desktopWindow(const X11Window& window) const;
    I3TiledWindows* i3();

    X11QueryConnection query_;
    X11EventConnection events_;
    X11WindowTable table_;
    X11WindowManager windowManager_;
    X11WindowMover mover_;
    X11Screens screens_;
    X11DesktopWatch desktopWatch_;
    X11KeyWatch keyWatch_;
    std::unique_ptr<I3TiledWindows> i3_;
    std::string i3Socket_;
};

} // namespace tavrin
