#pragma once

#include "capture/capture_service.h"
#include "ports/platform.h"
#include "restore/layout_restorer.h"
#include "session/launch_at_login_service.h"
#include "shortcuts/shortcut_manager.h"
#include "ui/permission_status_view_model.h"
#include "ui/save_popover.h"
#include "ui/settings_window.h"

#include <functional>
#include <memory>

namespace tavrin {

/// What the panes of the settings window show and change.
struct SettingsCollaborators {
    PermissionStatusViewModel& permissionStatusViewModel;
    ProfileListViewModel& profileListViewModel;
    CurrentProfileViewModel& currentProfileViewModel;
    ShortcutManager& shortcutManager;
    SettingsStore& settingsStore;
    CaptureService& captureService;
    ProfileStore& profileStore;
    LayoutChanges& layoutChanges;
    RestoreDebugStore& restoreDebugStore;
    LayoutRestorer& layoutRestorer;
    LaunchAtLoginService& launchAtLoginService;
    WindowListProviding& windowProvider;
    DisplaySnapshotProviding& displaySnapshotProvider;
    KeyMonitors& keyMonitors;
    ApplicationCatalog& applicationCatalog;
    DesktopInformation& desktopInformation;
    ApplicationHost& host;
    LinkOpener& linkOpener;
    Scheduler& scheduler;
    WallClock& clock;
    std::filesystem::path dataDirectory; ///< where the data files lie
    ProcessID processIdentifier;         ///< of this program
    /// Asks for a name beside that place (see `PopoverSurface`) and saves, as the menu does.
    std::function<void(const Rect& beside)> saveCurrentLayout;
};

/// Makes the windows of one toolkit.
class UserInterfaceFactory {
public:
    virtual ~UserInterfaceFactory() = default;

    virtual std::unique_ptr<PopoverSurface> makePopover() = 0;

    /// The collaborators outlive the window.
    virtual std::unique_ptr<SettingsWindowSurface>
    makeSettingsWindow(const SettingsCollaborators& collaborators) = 0;
};

} // namespace tavrin
