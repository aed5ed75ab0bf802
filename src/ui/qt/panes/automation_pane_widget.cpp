#include "ui/qt/panes/automation_pane_widget.h"

#include "ui/qt/controls/inputs.h"
#include "ui/qt/controls/settings_group.h"

#include <QSignalBlocker>

namespace tavrin {

AutomationSettingsWidget::AutomationSettingsWidget(const SettingsCollaborators& collaborators)
    : view_({.settingsStore = collaborators.settingsStore,
             .profileStore = collaborators.profileStore,
             .profileListViewModel = collaborators.profileListViewModel,
             .launchAtLoginService = collaborators.launchAtLoginService,
             .scheduler = collaborators.scheduler}),
      layoutChanges_(collaborators.layoutChanges) {
    buildEventSwitches();
    setupRows_ = new SettingsGroup;
    addSection(sections(), QStringLiteral("Default Layout Per Setup"),
               QStringLiteral("Tavrin auto-restores the default layout for the matched display setup when "
                              "events above are triggered."),
               setupRows_);
    buildStartup(qText(collaborators.desktopInformation.texts().launchAtLogin));
    rebuildSetups();
    subscription_ = view_.changed.connect([this] { showState(); });
}

void AutomationSettingsWidget::buildEventSwitches() {
    auto* rows = new SettingsGroup;
    for (const auto& [label, field] : AutomationSettingsView::eventSwitches) {
        auto* control = new SwitchControl(qText(label));
        connect(control, &QCheckBox::toggled, this,
                [this, field = field](bool isOn) { view_.setEventSwitch(field, isOn); });
        rows->addRow(makeSwitchRow(qText(label), {}, control));
        eventSwitches_.emplace_back(field, control);
    }
    addSection(sections(), QStringLiteral("Auto-Restore Events"), {}, rows);
}

void AutomationSettingsWidget::buildStartup(const QString& note) {
    const auto label = QStringLiteral("Launch Tavrin at login");
    launchSwitch_ = new SwitchControl(label);
    connect(launchSwitch_, &QCheckBox::toggled, this, [this](bool isOn) { view_.setLaunchAtLogin(isOn); });
    auto* row = makeSwitchRow(label, note, launchSwitch_);
    launchError_ = makeText({}, TextRole::warning);
    launchError_->hide();
    auto* content = new QWidget;
    auto* lines = new QVBoxLayout(content);
    lines->setContentsMargins(0, 0, 0, 0);
    auto* rows = new SettingsGroup;
    rows->addRow(row);
    lines->addWidget(rows);
    lines->addWidget(launchError_);
    addSection(sections(), QStringLiteral("Startup"), {}, content);
}

void AutomationSettingsWidget::showState() {
    for (const auto& [field, control] : eventSwitches_) {
        const QSignalBlocker blocker(control);
        control->setChecked(view_.settings().*field);
    }
    {
        const QSignalBlocker blocker(launchSwitch_);
        launchSwitch_->setChecked(view_.settings().launchAtLogin);
    }
    const QString error = qText(view_.launchAtLoginError().value_or(""));
    launchError_->setText(error);
    launchError_->setVisible(!error.isEmpty());

    if (shownSetups_ != view_.setups())
        rebuildSetups();
    for (const auto& [profileID, picker] : pickers_) {
        const auto chosen = view_.defaultLayoutSelections().find(profileID);
        const int index = chosen == view_.defaultLayoutSelections().end()
                              ? 0
                              : picker->findData(qText(chosen->second.text()));
        const QSignalBlocker blocker(picker);
        picker->setCurrentIndex(index < 0 ? 0 : index);
        const bool isNone = picker->currentIndex() == 0;
        notes_.at(profileID)->setVisible(isNone);
        // Screen readers tell the label, and of the value only this.
        picker->setAccessibleDescription(isNone ? notes_.at(profileID)->text() : picker->currentText());
    }
}

void AutomationSettingsWidget::rebuildSetups() {
    shownSetups_ = view_.setups();
    pickers_.clear();
    notes_.clear();
    setupRows_->clear();
    if (shownSetups_.empty())
        setupRows_->addRow(
            makeNoteRow(QStringLiteral("No display setup yet. Saving the first layout creates one.")));
    for (const auto& setup : shownSetups_) {
        QComboBox* picker = makePicker(setup);
        pickers_[setup.profileID] = picker;
        auto* note =
            makeText(QStringLiteral("Nothing is restored automatically on this setup."), TextRole::secondary);
        notes_[setup.profileID] = note;
        setupRows_->addRow(makeRow(qText(setup.name), note, picker));
    }
    followLayoutWithTab(*window());
}

QComboBox* AutomationSettingsWidget::makePicker(const AutomationSettingsView::Setup& setup) {
    auto* picker = new ChoiceBox(QStringLiteral("Default Layout, %1").arg(qText(setup.name)));
    picker->addItem(QStringLiteral("None"));
    for (const auto& layout : setup.layouts)
        picker->addItem(qText(layout.name), qText(layout.layoutID.text()));
    connect(picker, &QComboBox::activated, this, [this, picker, profileID = setup.profileID] {
        layoutChanges_.dismiss(); // what it offers may be this
        view_.chooseDefaultLayout(profileID, Uuid::parse(picker->currentData().toString().toStdString()));
    });
    return picker;
}

} // namespace tavrin
