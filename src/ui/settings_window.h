#pragma once

#include "ports/runtime.h"
#include "session/app_data_reset_coordinator.h"

#include <array>
#include <functional>
#include <string_view>

namespace tavrin {

/// The panes of the settings window, in the order of its side list.
enum class SettingsPane { layouts, automation, shortcuts, apps, advanced };

struct SettingsPaneDescription {
    SettingsPane pane;
    std::string_view title;
    std::string_view symbol; ///< the name of the drawing beside the title
};

inline constexpr std::array settingsPanes = {
    SettingsPaneDescription{SettingsPane::layouts, "Layouts", "rectangle.3.group"},
    SettingsPaneDescription{SettingsPane::automation, "Automation", "bolt.badge.clock"},
    SettingsPaneDescription{SettingsPane::shortcuts, "Shortcuts", "keyboard"},
    SettingsPaneDescription{SettingsPane::apps, "Apps", "app.badge"},
    SettingsPaneDescription{SettingsPane::advanced, "Advanced", "wrench.and.screwdriver"},
};

/// The settings window as the desktop shows it.
class SettingsWindowSurface {
public:
    virtual ~SettingsWindowSurface() = default;

    /// Fills the window anew, puts it in the middle of the screen and in front of all others, with the focus.
    /// `showResetNotice`: whether the notice about the data reset stands above the pane.
    enum class ResetNotice { hidden, shown };
    virtual void show(SettingsPane pane, ResetNotice notice) = 0;

    /// The window is open, perhaps behind others or minimised.
    virtual bool isOpen() = 0;

    /// Called each time the user closes the window.
    virtual void setOnClose(std::function<void()> onClose) = 0;
};

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
