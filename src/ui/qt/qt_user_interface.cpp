#include "ui/qt/qt_user_interface.h"

#include "ui/qt/controls/menu_style.h"
#include "ui/qt/save_popover.h"
#include "ui/qt/settings_window.h"

#include <QApplication>

namespace tavrin {

QtUserInterface::QtUserInterface(ApplicationHost& host, std::function<std::optional<Rect>()> statusItemAnchor)
    : host_(host), statusItemAnchor_(std::move(statusItemAnchor)) {
    QApplication::setStyle(new MenuStyle);
}

std::unique_ptr<PopoverSurface> QtUserInterface::makePopover() {
    return std::make_unique<QtSavePopover>(host_, statusItemAnchor_);
}

std::unique_ptr<SettingsWindowSurface>
QtUserInterface::makeSettingsWindow(const SettingsCollaborators& collaborators) {
    return std::make_unique<QtSettingsWindow>(collaborators);
}

} // namespace tavrin
