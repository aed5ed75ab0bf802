#pragma once

#include "ui/advanced_pane.h"
#include "ui/qt/panes/settings_pane_widget.h"

class QLabel;
class QPushButton;

namespace tavrin {

class FoldRow;
class SettingsGroup;
class SwitchControl;

/// The advanced pane.
class AdvancedPaneWidget final : public SettingsPaneWidget {
public:
    /// See `AdvancedPane`.
    AdvancedPaneWidget(const SettingsCollaborators& collaborators, bool& isTroubleshootingExpanded);

    void appear() override { pane_.appear(); }

private:
    void buildPermission();
    void buildLastAttempt();
    void buildRestoring();
    void buildTroubleshooting();
    void showState();
    void showLastAttempt();
    void showReport();

    AdvancedPane pane_;
    QLabel* permissionIcon_ = nullptr;
    QLabel* permissionTitle_ = nullptr;
    QLabel* permissionMessage_ = nullptr;
    SettingsGroup* attemptRows_ = nullptr;
    QPushButton* copyAttemptButton_ = nullptr;
    SwitchControl* clusterSwitch_ = nullptr;
    FoldRow* foldRow_ = nullptr;
    SettingsGroup* reportRows_ = nullptr;
    QWidget* reportActions_ = nullptr;
    QLabel* folderMessage_ = nullptr;
    std::optional<RestoreAttemptDiagnostics> shownAttempt_;
    std::optional<TroubleshootingReport> shownReport_;
    Token subscription_;
};

} // namespace tavrin
