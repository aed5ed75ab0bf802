#pragma once

#include "capture/capture_service.h"
#include "display/current_profile_view_model.h"
#include "display/profile_list_view_model.h"
#include "ports/platform.h"
#include "restore/restore_debug_store.h"
#include "session/launch_at_login_service.h"
#include "session/permission_status_view_model.h"
#include "shortcuts/shortcut_manager.h"

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
    RestoreDebugStore& restoreDebugStore;
    LaunchAtLoginService& launchAtLoginService;
};

} // namespace tavrin
