#include "platform/x11/x11_desktop_watch.h"

#include <xcb/randr.h>

#include <utility>

namespace tavrin {

X11DesktopWatch::X11DesktopWatch(X11EventConnection& connection, X11Screens& screens,
                                 X11WindowManager& windowManager)
    : connection_(connection), screens_(screens), windowManager_(windowManager), scale_(screens.scale()),
      events_(connection.observeEvents([this](const xcb_generic_event_t& event) { handleEvent(event); })),
      batches_(connection.observeBatches([this] { reportChanges(); })) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_EVENT_MASK, &mask);
    if (connection.server().extensions().hasMonitors)
        xcb_randr_select_input(connection.get(), connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
    watchCheckWindow();
}

bool X11DesktopWatch::isScreenChange(const xcb_randr_notify_event_t& notice) const {
    // Of the properties of an output, only the display's data say which display it is; others follow every
    // turn of the brightness.
    return notice.subCode != XCB_RANDR_NOTIFY_OUTPUT_PROPERTY || notice.u.op.atom == connection_.atoms().edid;
}

void X11DesktopWatch::handleEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7f;
    const auto& extensions = connection_.server().extensions();
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window != connection_.root())
            return;
        haveResourcesChanged_ |= change.atom == XCB_ATOM_RESOURCE_MANAGER;
        hasWindowManagerChanged_ |= change.atom == connection_.atoms().netSupportingWmCheck ||
                                    change.atom == connection_.atoms().netSupported;
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        // Also the only sign of a monitor made or removed by hand.
        haveScreensChanged_ |=
            reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == connection_.root();
    } else if (type == XCB_DESTROY_NOTIFY) {
        hasWindowManagerChanged_ |=
            reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == checkWindow_;
    } else if (extensions.hasMonitors) {
        haveScreensChanged_ |= type == extensions.randrFirstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                               (type == extensions.randrFirstEvent + XCB_RANDR_NOTIFY &&
                                isScreenChange(reinterpret_cast<const xcb_randr_notify_event_t&>(event)));
    }
}

void X11DesktopWatch::reportChanges() {
    if (std::exchange(haveResourcesChanged_, false)) {
        const auto scale = screens_.scale();
        haveScreensChanged_ |= scale != std::exchange(scale_, scale);
    }
    const bool screensChanged = std::exchange(haveScreensChanged_, false);
    const bool windowManagerChanged = std::exchange(hasWindowManagerChanged_, false);
    if (windowManagerChanged) {
        watchCheckWindow();
        awaitReturn();
        windowManagerChanged_.emit();
    }
    if (screensChanged)
        screensChanged_.emit();
}

void X11DesktopWatch::awaitReturn() {
    absence_.release();
    if (windowManager_.isControllable(Freshness::now) && windowManager_.isAbsent())
        absence_ = connection_.scheduler().after(X11WindowManager::absenceLimit,
                                                 [this] { windowManagerChanged_.emit(); });
}

void X11DesktopWatch::watchCheckWindow() {
    checkWindow_ = windowManager_.checkWindow();
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    if (checkWindow_ != XCB_WINDOW_NONE)
        xcb_change_window_attributes(connection_.get(), checkWindow_, XCB_CW_EVENT_MASK, &mask);
    connection_.flush();
}

} // namespace tavrin
