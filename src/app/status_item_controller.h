#pragma once

#include "app/status_item_menu.h"
#include "ports/runtime.h"
#include "ports/services.h"
#include "ports/session.h"
#include "ports/status_item.h"
#include "restore/layout_restorer.h"
#include "shortcuts/shortcut_manager.h"
#include "ui/permission_status_view_model.h"
#include "ui/save_popover.h"
#include "ui/settings_window.h"

#include <vector>

namespace tavrin {

/// The status item: its icon, its menu, and what the menu's items do. The menu is built anew whenever
/// something it shows has changed, and again each time it opens.
class StatusItemController {
public:
    struct Collaborators {
        PermissionStatusViewModel& permissionStatusViewModel;
        SettingsWindowController& settingsWindowController;
        CurrentProfileViewModel& currentProfileViewModel;
        ProfileListViewModel& profileListViewModel;
        CapturePopoverController& capturePopoverController;
        ProfileStore& profileStore;
        LayoutRestorer& layoutRestorer;
        ShortcutManager& shortcutManager;
        StatusItemSurface& statusItem;
        ApplicationHost& host;
        LinkOpener& linkOpener;
        Scheduler& scheduler;
    };

    static constexpr Seconds feedbackDuration{1.5};

    /// Shows the status item.
    explicit StatusItemController(Collaborators collaborators);
    ~StatusItemController();

    /// Shows on the icon for a short time how a restore went.
    void showRestoreFeedback(const RestoreResult& result);

private:
    void perform(MenuAction action, const std::optional<Uuid>& layoutID);
    void quickUpdateLayout(const Uuid& layoutID);
    void menuNeedsUpdate();
    void showNormalIcon();
    void rebuildMenu();
    void rebuildMenuSoon();
    std::optional<SavedLayout> layout(const Uuid& layoutID);

    Collaborators collaborators_;
    std::vector<Token> subscriptions_;
    Token rebuildTask_;
    Token feedbackTask_; ///< ends the feedback shown last; a newer feedback replaces it
};

/// The name of the drawing that tells how a restore went.
std::string feedbackSymbol(const RestoreResult& result);

} // namespace tavrin
