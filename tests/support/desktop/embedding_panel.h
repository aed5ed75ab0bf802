#pragma once

#include "support/desktop/x_connection.h"

#include <optional>

namespace tavrin::desktop {

/// A panel of the older kind: programs put their icon's window into it (freedesktop.org System Tray
/// Protocol). Another client than the harness, as a real panel is.
class EmbeddingPanel {
public:
    explicit EmbeddingPanel(const std::string& display) : x_(display) {}

    /// Takes the place of the display's system tray and tells everybody.
    bool appear();

    /// Waits until a program has put its icon here and the icon is on the screen; root pixels.
    std::optional<Rect> waitForIcon();

private:
    void dock(xcb_window_t icon);

    XConnection x_;
    xcb_window_t window_ = XCB_NONE;
    xcb_window_t icon_ = XCB_NONE;
};

} // namespace tavrin::desktop
