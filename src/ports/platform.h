#pragma once

#include "records/windows.h"

#include <filesystem>

namespace tavrin {

class AccessibilityTrust;
class ApplicationCatalog;
class ApplicationHost;
class DesktopInformation;
class FileSystem;
class KeyMonitors;
class LinkOpener;
class LoginItem;
class RawWindowList;
class RunningApplications;
class RunningInstances;
class Scheduler;
class ScreenList;
class StatusItemSurface;
class SystemEvents;
class UserDefaults;
class WallClock;
class WindowElements;

/// Everything the program needs of the desktop it runs on. Its maker owns what it refers to.
struct Platform {
    ScreenList& screenList;
    RawWindowList& windowList;
    RunningApplications& runningApplications;
    WindowElements& windowElements;
    AccessibilityTrust& accessibilityTrust;
    KeyMonitors& keyMonitors;
    SystemEvents& systemEvents;
    LoginItem& loginItem;
    RunningInstances& runningInstances;
    UserDefaults& userDefaults;
    FileSystem& fileSystem;
    WallClock& clock;
    Scheduler& scheduler;
    StatusItemSurface& statusItem;
    ApplicationHost& applicationHost;
    LinkOpener& linkOpener;
    std::filesystem::path applicationSupportDirectory; ///< where the user's data of all programs lies
    ProcessID processIdentifier;                       ///< of this process
    ApplicationCatalog& applicationCatalog;
    DesktopInformation& desktopInformation;
};

} // namespace tavrin
