#pragma once

#include "ui/popover_surface.h"
#include "ui/settings_collaborators.h"
#include "ui/settings_window_surface.h"

#include <memory>

namespace tavrin {

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
