#pragma once

#include "ui/settings_collaborators.h"
#include "ui/settings_window_surface.h"

#include <QWidget>

namespace tavrin {

class SettingsRootView;

/// The window around the settings. Its content lives only while it is open.
class SettingsWindow final : public QWidget {
public:
    explicit SettingsWindow(SettingsCollaborators collaborators);

    /// Fills the window anew, centres it and brings it to the front.
    void open(SettingsPane pane, SettingsWindowSurface::ResetNotice notice);

    std::function<void()> onClose;

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void fill(SettingsPane pane);
    void refillSoon();
    void fitIntoScreen();

    SettingsCollaborators collaborators_;
    SettingsWindowSurface::ResetNotice notice_ = SettingsWindowSurface::ResetNotice::hidden;
    SettingsRootView* rootView_ = nullptr; ///< null while the window is closed
    bool isRefillPending_ = false;
    bool hasBeenShown_ = false;
};

} // namespace tavrin
