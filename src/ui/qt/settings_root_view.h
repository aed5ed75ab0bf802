#pragma once

#include "ui/settings_collaborators.h"
#include "ui/settings_window_surface.h"

#include <QWidget>

class QListWidget;
class QScrollArea;
class QVBoxLayout;

namespace tavrin {

class SettingsPaneWidget;

/// The content of the settings window: the list of panes on the side and the chosen one beside it. A pane is
/// made each time it is chosen, so it always shows what the files hold.
class SettingsRootView final : public QWidget {
public:
    SettingsRootView(const SettingsCollaborators& collaborators, SettingsPane selectedPane,
                     SettingsWindowSurface::ResetNotice notice);

    SettingsPane selectedPane() const { return selectedPane_; }

    /// The window has come to the front.
    void appear();

private:
    void buildSideList();
    QWidget* makeNotice();
    void showPane();

    const SettingsCollaborators& collaborators_;
    SettingsPane selectedPane_;
    bool isTroubleshootingExpanded_ = false;
    QListWidget* sideList_;
    QVBoxLayout* content_;
    QWidget* page_ = nullptr;
    SettingsPaneWidget* pane_ = nullptr;
};

} // namespace tavrin
