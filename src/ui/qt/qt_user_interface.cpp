#include "ui/qt/qt_user_interface.h"

#include "ui/qt/qt_save_popover.h"

namespace tavrin {
namespace {

class NoSettingsWindow : public SettingsWindowSurface {
public:
    void show(SettingsPane, ResetNotice) override {}
    void setOnClose(std::function<void()>) override {}
};

} // namespace

std::unique_ptr<PopoverSurface> QtUserInterface::makePopover() {
    return std::make_unique<QtSavePopover>(host_, statusItemAnchor_);
}

std::unique_ptr<SettingsWindowSurface> QtUserInterface::makeSettingsWindow(const SettingsCollaborators&) {
    return std::make_unique<NoSettingsWindow>();
}

} // namespace tavrin
