#pragma once

#include "platform/windows/window_system.h"
#include "platform/x11/window_frame.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>

namespace tavrin {

/// The states the window manager keeps for a window.
struct WindowStates {
    bool isHidden = false; ///< minimised
    bool isFullscreen = false;
    bool isMaximizedHorizontally = false;
    bool isMaximizedVertically = false;
    bool isShaded = false;

    bool operator==(const WindowStates&) const = default;

    /// A window in one of these states ignores requests to move it.
    bool isPinned() const {
        return isFullscreen || isMaximizedHorizontally || isMaximizedVertically || isShaded;
    }
};

/// A client window as the server and the window manager describe it.
struct X11Window {
    xcb_window_t id = XCB_WINDOW_NONE;
    PixelRect client; ///< the window itself, without anything around it
    std::int32_t borderWidth = 0;
    bool isViewable = false;
    FrameInsets decorations;
    FrameInsets shadows;
    bool drawsOwnShadows = false; ///< the client says how wide they are, even where it is nothing now
    WindowStates states;
    std::optional<std::uint32_t> desktop; ///< absent where there are no desktops, or when not asked for
    std::optional<WindowKind> kind;       ///< absent for wallpaper, panels, menus and notifications
    std::string title;
    ApplicationClues clues;

    /// The server's own border counts like a frame where the window manager draws none. Shadows that would
    /// leave nothing of the window do not count.
    WindowBorders borders() const {
        const bool isPossible =
            shadows.left + shadows.right < client.width && shadows.top + shadows.bottom < client.height;
        const auto inner = isPossible ? shadows : FrameInsets{};
        if (borderWidth > 0 && decorations == FrameInsets{})
            return {{borderWidth, borderWidth, borderWidth, borderWidth}, inner};
        return {decorations, inner};
    }
};

} // namespace tavrin
