#include "ui/settings_window.h"

namespace tavrin {

SettingsWindowController::SettingsWindowController(SettingsWindowSurface& window, ApplicationHost& host,
                                                   AppDataResetCoordinator resetCoordinator)
    : window_(window), host_(host), resetCoordinator_(std::move(resetCoordinator)) {
    window_.setOnClose([&host] { host.setActivationPolicy(ActivationPolicy::accessory); });
}

void SettingsWindowController::show(SettingsPane pane) {
    selectedPane_ = pane;
    if (!pendingBetaResetNotice_)
        pendingBetaResetNotice_ = resetCoordinator_.consumeResetNotice();
    host_.setActivationPolicy(ActivationPolicy::regular);
    window_.show(pane, pendingBetaResetNotice_ ? SettingsWindowSurface::ResetNotice::shown
                                               : SettingsWindowSurface::ResetNotice::hidden);
    host_.activate();
}

void SettingsWindowController::bringForward() {
    if (window_.isOpen())
        host_.activate();
    else
        show(selectedPane_);
}

} // namespace tavrin
