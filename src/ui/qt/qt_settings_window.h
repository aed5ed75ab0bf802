#pragma once

#include "ui/settings_collaborators.h"
#include "ui/settings_window_surface.h"

#include <memory>

namespace tavrin {

class SettingsWindow;

/// The settings window made with Qt. It is made once; closing only hides it.
class QtSettingsWindow final : public SettingsWindowSurface {
public:
    explicit QtSettingsWindow(const SettingsCollaborators& collaborators);
    ~QtSettingsWindow() override;

    void show(SettingsPane pane, ResetNotice notice) override;
    bool isOpen() override;
    void setOnClose(std::function<void()> onClose) override;

private:
    std::unique_ptr<SettingsWindow> window_;
};

} // namespace tavrin
