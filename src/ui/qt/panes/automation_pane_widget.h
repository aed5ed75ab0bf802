#pragma once

#include "ui/automation_settings_view.h"
#include "ui/qt/panes/settings_pane_widget.h"
#include "ui/user_interface.h"

#include <map>
#include <utility>
#include <vector>

class QComboBox;
class QLabel;

namespace tavrin {

class SettingsGroup;
class SwitchControl;

/// The automation pane.
class AutomationSettingsWidget final : public SettingsPaneWidget {
public:
    explicit AutomationSettingsWidget(const SettingsCollaborators& collaborators);

    void appear() override { view_.appear(); }

private:
    void buildEventSwitches();
    void buildStartup(const QString& note);
    void showState();
    void rebuildSetups();
    QComboBox* makePicker(const AutomationSettingsView::Setup& setup);

    AutomationSettingsView view_;
    LayoutChanges& layoutChanges_;
    std::vector<std::pair<bool AppSettings::*, SwitchControl*>> eventSwitches_;
    SwitchControl* launchSwitch_ = nullptr;
    QLabel* launchError_ = nullptr;
    SettingsGroup* setupRows_ = nullptr;
    std::vector<AutomationSettingsView::Setup> shownSetups_;
    std::map<Uuid, QComboBox*> pickers_;
    std::map<Uuid, QLabel*> notes_; ///< beside a picker without a choice
    Token subscription_;
};

} // namespace tavrin
