#pragma once

#include "ui/apps_pane.h"
#include "ui/qt/controls/keyboard_list.h"
#include "ui/qt/panes/settings_pane_widget.h"
#include "ui/user_interface.h"

class QAbstractButton;
class QLineEdit;
class QPushButton;

namespace tavrin {

class SettingsGroup;

/// The apps pane.
class AppsPaneWidget final : public SettingsPaneWidget {
public:
    explicit AppsPaneWidget(const SettingsCollaborators& collaborators);

    void appear() override;
    QString description() const override { return qText(AppsPane::description); }

private:
    QWidget* makeAddRow();
    QAbstractButton* makeExcludedButton(const ListedApplication& application);
    QAbstractButton* makeOpenButton(const ListedApplication& application);
    static KeyboardList::Row addRow(SettingsGroup& group, const ListedApplication& application,
                                    QAbstractButton* button);
    void showState();
    void showLists();

    AppsPane pane_;
    std::string placeholder_;
    KeyboardList* list_;
    KeyboardList* openList_;
    SettingsGroup* excludedRows_ = nullptr;
    SettingsGroup* openRows_ = nullptr;
    QLineEdit* field_ = nullptr;
    QPushButton* addButton_ = nullptr;
    std::vector<std::string> shownExcluded_;
    bool areListsStale_ = true; ///< other windows may be open by now
    Token subscription_;
};

} // namespace tavrin
