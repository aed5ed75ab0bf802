#include "ui/automation_settings_view.h"

namespace tavrin {

AutomationSettingsView::AutomationSettingsView(Collaborators collaborators) : collaborators_(collaborators) {
    listSubscription_ = collaborators_.profileListViewModel.reloaded.connect([this] {
        readSetups();
        changed.emit();
    });
}

void AutomationSettingsView::appear() {
    if (auto loaded = collaborators_.settingsStore.load())
        settings_ = std::move(*loaded);
    const bool isEnabled = collaborators_.launchAtLoginService.isEnabled();
    if (settings_.launchAtLogin != isEnabled) {
        settings_.launchAtLogin = isEnabled;
        static_cast<void>(collaborators_.settingsStore.save(settings_));
    }
    readSetups();
    changed.emit();
}

void AutomationSettingsView::setEventSwitch(bool AppSettings::* field, bool isOn) {
    change(field, isOn);
    changed.emit();
}

void AutomationSettingsView::chooseDefaultLayout(const Uuid& profileID, std::optional<Uuid> layoutID) {
    // A failure shows nothing; the reload tells what the store really holds.
    static_cast<void>(collaborators_.profileStore.setDefaultLayout(profileID, layoutID));
    collaborators_.profileListViewModel.reload();
}

void AutomationSettingsView::setLaunchAtLogin(bool isOn) {
    LaunchAtLoginService& service = collaborators_.launchAtLoginService;
    if (const auto done = isOn ? service.enable() : service.disable(); !done) {
        settings_.launchAtLogin = isOn;
        launchAtLoginError_ = std::string("Could not ") + (isOn ? "enable" : "disable") +
                              " launch at login: " + done.error().localizedDescription;
        // The switch has to finish its own move before it can be put back.
        correction_ = collaborators_.scheduler.after(Seconds{0}, [this] {
            settings_.launchAtLogin = collaborators_.launchAtLoginService.isEnabled();
            changed.emit();
        });
    } else {
        correction_.release();
        launchAtLoginError_.reset();
        change(&AppSettings::launchAtLogin, isOn);
        settings_.launchAtLogin = service.isEnabled();
    }
    changed.emit();
}

void AutomationSettingsView::change(bool AppSettings::* field, bool isOn) {
    // The file may have changed in other panes since; their part of it must not be taken back.
    const bool before = settings_.*field;
    if (auto loaded = collaborators_.settingsStore.load())
        settings_ = std::move(*loaded);
    settings_.*field = isOn;
    if (collaborators_.settingsStore.save(settings_))
        return;
    settings_.*field = before;
    if (auto loaded = collaborators_.settingsStore.load())
        settings_ = std::move(*loaded);
}

void AutomationSettingsView::readSetups() {
    setups_.clear();
    defaultLayoutSelections_.clear();
    const auto layouts = collaborators_.profileStore.loadLayouts().value_or(std::vector<SavedLayout>{});
    for (const MonitorProfile& profile : collaborators_.profileListViewModel.profiles.value()) {
        Setup setup{profile.id, profile.name, {}};
        for (const SavedLayout& layout : layouts)
            if (layout.profileID == profile.id)
                setup.layouts.push_back({layout.id, layout.name});
        setups_.push_back(std::move(setup));
        if (const auto layoutID = collaborators_.profileStore.defaultLayoutID(profile))
            defaultLayoutSelections_[profile.id] = *layoutID;
    }
}

} // namespace tavrin
