#pragma once

#include "platform/windows/window_system.h"
#include "platform/x11/x11_window_manager.h"

#include <string_view>
#include <vector>

namespace tavrin {

/// The scale that the desktop's resource texts (lines of "name: value") ask for: Xft.dpi in relation to the
/// usual 96. 1 when there is no such line or its value is not a possible resolution.
double resourceScale(std::string_view resources);

/// The monitors with their hardware identity and what panels leave free of them. Nothing is remembered:
/// every answer comes from the server, in a handful of round trips.
class X11Screens {
public:
    X11Screens(X11Connection& server, X11WindowManager& windowManager)
        : server_(server), windowManager_(windowManager) {}

    std::vector<DesktopScreen> screens();

    /// The frame of the primary one; empty without any. One round trip.
    Rect primaryFrame();

    /// The scale that the desktop asks for, the same for all screens; 1 where it does not.
    double scale();

private:
    X11Connection& server_;
    X11WindowManager& windowManager_;
};

} // namespace tavrin
