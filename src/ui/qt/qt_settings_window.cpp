#include "ui/qt/qt_settings_window.h"

#include "ui/qt/settings_window.h"

namespace tavrin {

QtSettingsWindow::QtSettingsWindow(const SettingsCollaborators& collaborators)
    : window_(std::make_unique<SettingsWindow>(collaborators)) {}

QtSettingsWindow::~QtSettingsWindow() = default;

void QtSettingsWindow::show(SettingsPane pane, ResetNotice notice) {
    window_->open(pane, notice);
}

bool QtSettingsWindow::isOpen() {
    return window_->isVisible();
}

void QtSettingsWindow::setOnClose(std::function<void()> onClose) {
    window_->onClose = std::move(onClose);
}

} // namespace tavrin
