#include "ui/automation_settings_view.h"

namespace tavrin {

AutomationSettingsView::AutomationSettingsView(Collaborators collaborators) : collaborators_(collaborators) {
    listSubscription_ = collaborators_.profileListViewModel.reloaded.connect([this] {
        readSetups();
        changed.emit();
    });
}

void AutomationSettingsView::appear() {
    LaunchAtLoginService& service = collaborators_.launchAtLoginService;
    service.reconcile(collaborators_.settingsStore, LaunchAtLoginService::Missing::accept);
    if (auto loaded = collaborators_.settingsStore.load())
        settings_ = std::move(*loaded);
    settings_.launchAtLogin = service.isEnabled();
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
    const auto changed =
        collaborators_.settingsStore.change([&](AppSettings& settings) { settings.*field = isOn; });
    if (changed) {
        settings_ = *changed;
        return;
    }
    if (auto loaded = collaborators_.settingsStore.load())
        settings_ = std::move(*loaded);
}

void AutomationSettingsView::readSetups() {
    setups_.clear();
    defaultLayoutSelections_.clear();
    const auto setups = collaborators_.profileStore.load().value_or(SavedSetups{});
    for (const MonitorProfile& profile : collaborators_.profileListViewModel.profiles.value()) {
        Setup setup{profile.id, profile.name, {}};
        for (const SavedLayout& layout : setups.layoutsOf(profile.id))
            setup.layouts.push_back({layout.id, layout.name});
        setups_.push_back(std::move(setup));
        if (const auto layoutID = collaborators_.profileStore.defaultLayoutID(profile))
            defaultLayoutSelections_[profile.id] = *layoutID;
    }
}

} // namespace tavrin
