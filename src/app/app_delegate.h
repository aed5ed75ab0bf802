#pragma once

#include "app/status_item_controller.h"
#include "capture/window_providers.h"
#include "display/display_snapshot_provider.h"
#include "ports/platform.h"
#include "restore/auto_restore_coordinator.h"
#include "restore/restore_service.h"
#include "restore/running_application_resolver.h"
#include "restore/window_mover.h"
#include "session/accessibility_permission_service.h"
#include "session/launch_at_login_service.h"
#include "ui/user_interface.h"

#include <memory>
#include <vector>

namespace tavrin {

/// The composition root: builds every service once and wires them to each other. It owns them all for the
/// life of the process.
class AppDelegate {
public:
    /// Applies the one-time data reset, then builds the services; none of them starts working yet.
    AppDelegate(const Platform& platform, UserInterfaceFactory& userInterface);

    /// Shows the status item and starts everything. A second call installs nothing twice.
    void applicationDidFinishLaunching();

    /// Another start of the program asked this one to come forward.
    void bringForward() { settingsWindowController_.bringForward(); }

private:
    AppSupportPaths paths() const;
    void showThatItRuns();
    void permissionChanged(AccessibilityPermissionState state);
    void refresh();
    void restoreMatchedDefaultLayout();

    // In the order in which they are built: each uses only what stands above it.
    Platform platform_;
    AppDataResetCoordinator resetCoordinator_;
    DisplaySnapshotProvider displaySnapshotProvider_;
    WindowListProvider windowListProvider_;
    AXWindowSnapshotProvider axWindowSnapshotProvider_;
    WindowMover windowMover_;
    RunningApplicationResolver runningApplicationResolver_;
    AccessibilityPermissionService permissionService_;
    ProfileStore profileStore_;
    SettingsStore settingsStore_;
    PermissionStatusViewModel permissionStatusViewModel_;
    CurrentProfileViewModel currentProfileViewModel_;
    ProfileListViewModel profileListViewModel_;
    ShortcutManager shortcutManager_;
    RestoreDebugStore restoreDebugStore_;
    CaptureService captureService_;
    LayoutChanges layoutChanges_;
    RestoreService restoreService_;
    LayoutRestorer layoutRestorer_;
    AutoRestoreCoordinator autoRestoreCoordinator_;
    LaunchAtLoginService launchAtLoginService_;
    std::unique_ptr<PopoverSurface> popover_;
    std::unique_ptr<SettingsWindowSurface> settingsWindow_;
    SettingsWindowController settingsWindowController_;
    CapturePopoverController capturePopoverController_;
    std::unique_ptr<StatusItemController> statusItemController_; ///< null until launch has finished
    std::vector<Token> observers_;
    Token permissionSubscription_;
    Token noticeSubscription_;
};

} // namespace tavrin
