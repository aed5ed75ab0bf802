#pragma once

#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_screens.h"
#include "platform/x11/x11_window_manager.h"

#include <xcb/randr.h>

#include <functional>

namespace tavrin {

/// Watches for changes of the screens and of the window manager.
class X11DesktopWatch {
public:
    X11DesktopWatch(X11EventConnection& connection, X11Screens& screens, X11WindowManager& windowManager);

    /// A screen came, went, moved or changed its size, or the scale changed.
    Token observeScreens(std::function<void()> handler) {
        return screensChanged_.connect(std::move(handler));
    }

    /// A window manager started, was replaced, or has been missing for a while.
    Token observeWindowManager(std::function<void()> handler) {
        return windowManagerChanged_.connect(std::move(handler));
    }

private:
    bool isScreenChange(const xcb_randr_notify_event_t& notice) const;
    void handleEvent(const xcb_generic_event_t& event);
    void reportChanges();
    void watchCheckWindow();
    void awaitReturn();

    X11EventConnection& connection_;
    X11Screens& screens_;
    X11WindowManager& windowManager_;
    Signal<> screensChanged_;
    Signal<> windowManagerChanged_;
    double scale_;
    xcb_window_t checkWindow_ = XCB_WINDOW_NONE;
    bool haveScreensChanged_ = false;
    bool haveResourcesChanged_ = false;
    bool hasWindowManagerChanged_ = false;
    Token absence_;
    Token events_;
    Token batches_;
};

} // namespace tavrin
