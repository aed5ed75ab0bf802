#pragma once

#include "base/signal.h"
#include "ports/runtime.h"
#include "session/launch_at_login_service.h"
#include "storage/profile_store.h"
#include "storage/settings_store.h"
#include "ui/profile_list_view_model.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Chooses what happens automatically: when windows are restored, to which layout, and whether the program
/// starts at login. Everything is saved at once; only a login item that cannot be changed is worth a message.
class AutomationSettingsView {
public:
    struct Collaborators {
        SettingsStore& settingsStore;
        ProfileStore& profileStore;
        ProfileListViewModel& profileListViewModel;
        LaunchAtLoginService& launchAtLoginService;
        Scheduler& scheduler;
    };

    struct EventSwitch {
        std::string_view label;
        bool AppSettings::* field;
    };
    static constexpr std::array eventSwitches = {
        EventSwitch{"Restore on monitor connect", &AppSettings::autoRestoreOnConnect},
        EventSwitch{"Restore on monitor disconnect", &AppSettings::autoRestoreOnDisconnect},
        EventSwitch{"Restore on wake", &AppSettings::autoRestoreOnWake},
        EventSwitch{"Restore on unlock/login", &AppSettings::autoRestoreOnUnlockLogin},
    };

    struct LayoutChoice {
        Uuid layoutID;
        std::string name;
        bool operator==(const LayoutChoice&) const = default;
    };
    /// A saved display setup with what its picker offers.
    struct Setup {
        Uuid profileID;
        std::string name;
        std::vector<LayoutChoice> layouts;
        bool operator==(const Setup&) const = default;
    };

    explicit AutomationSettingsView(Collaborators collaborators);

    /// The view is shown, or shown again: reads everything anew. What the session says about launching at
    /// login is saved when the settings say something else.
    void appear();

    const AppSettings& settings() const { return settings_; }
    const std::vector<Setup>& setups() const { return setups_; }
    const std::map<Uuid, Uuid>& defaultLayoutSelections() const { return defaultLayoutSelections_; }
    const std::optional<std::string>& launchAtLoginError() const { return launchAtLoginError_; }

    void setEventSwitch(bool AppSettings::* field, bool isOn);
    /// An absent layout clears the default.
    void chooseDefaultLayout(const Uuid& profileID, std::optional<Uuid> layoutID);
    void setLaunchAtLogin(bool isOn);

    /// Something shown is different now.
    Signal<> changed;

private:
    void readSetups();
    void change(bool AppSettings::* field, bool isOn);

    Collaborators collaborators_;
    AppSettings settings_;
    std::vector<Setup> setups_;
    std::map<Uuid, Uuid> defaultLayoutSelections_;
    std::optional<std::string> launchAtLoginError_;
    Token correction_;
    Token listSubscription_;
};

} // namespace tavrin
