#pragma once

#include "platform/unsupported/unsupported_accessibility_trust.h"
#include "platform/unsupported/unsupported_application_catalog.h"
#include "platform/unsupported/unsupported_desktop_information.h"
#include "platform/unsupported/unsupported_key_monitors.h"
#include "platform/unsupported/unsupported_link_opener.h"
#include "platform/unsupported/unsupported_login_item.h"
#include "platform/unsupported/unsupported_raw_window_list.h"
#include "platform/unsupported/unsupported_running_applications.h"
#include "platform/unsupported/unsupported_running_instances.h"
#include "platform/unsupported/unsupported_screen_list.h"
#include "platform/unsupported/unsupported_status_item.h"
#include "platform/unsupported/unsupported_system_events.h"
#include "platform/unsupported/unsupported_window_elements.h"

namespace tavrin {

/// Every part of a desktop that a new platform has to bring, each as an honest "not available". To start a
/// new platform, copy this folder and replace the parts one by one; the program runs at every step, with
/// the permission denied until windows can really be read and moved. Files, clock, timers, the application
/// host and the user defaults are not here: the POSIX and toolkit folders have them for every desktop.
struct UnsupportedPlatform {
    UnsupportedScreenList screenList;
    UnsupportedRawWindowList windowList;
    UnsupportedRunningApplications runningApplications;
    UnsupportedWindowElements windowElements;
    UnsupportedAccessibilityTrust accessibilityTrust;
    UnsupportedKeyMonitors keyMonitors;
    UnsupportedSystemEvents systemEvents;
    UnsupportedLoginItem loginItem;
    UnsupportedRunningInstances runningInstances;
    UnsupportedStatusItem statusItem;
    UnsupportedLinkOpener linkOpener;
    UnsupportedApplicationCatalog applicationCatalog;
    UnsupportedDesktopInformation desktopInformation;
};

} // namespace tavrin
