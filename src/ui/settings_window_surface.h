#pragma once

#include "ui/settings_pane.h"

#include <functional>

namespace tavrin {

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

} // namespace tavrin
