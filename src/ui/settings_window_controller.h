#pragma once

#include "ports/runtime.h"
#include "session/app_data_reset_coordinator.h"
#include "ui/settings_window_surface.h"

namespace tavrin {

/// Owns the one settings window. While it is open the program is a regular application; otherwise it has
/// no place in the task bar.
class SettingsWindowController {
public:
    SettingsWindowController(SettingsWindowSurface& window, ApplicationHost& host,
                             AppDataResetCoordinator resetCoordinator);

    /// Opens the window on that pane or brings it forward.
    void show(SettingsPane pane);

    /// For a second start of the program: brings an open window forward as it is, or opens it.
    void bringForward();

private:
    SettingsWindowSurface& window_;
    ApplicationHost& host_;
    AppDataResetCoordinator resetCoordinator_;
    SettingsPane selectedPane_ = SettingsPane::layouts;
    bool pendingBetaResetNotice_ = false; ///< once found pending, the notice stays for this run
};

} // namespace tavrin
