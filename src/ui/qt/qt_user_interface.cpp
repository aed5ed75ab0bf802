#include "ui/qt/qt_user_interface.h"

#include "ui/qt/save_popover.h"
#include "ui/qt/settings_window.h"

namespace tavrin {

std::unique_ptr<PopoverSurface> QtUserInterface::makePopover() {
    return std::make_unique<QtSavePopover>(host_, statusItemAnchor_);
}

std::unique_ptr<SettingsWindowSurface>
QtUserInterface::makeSettingsWindow(const SettingsCollaborators& collaborators) {
    return std::make_unique<QtSettingsWindow>(collaborators);
}

} // namespace tavrin
