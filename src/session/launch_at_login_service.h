#pragma once

#include "ports/session.h"
#include "storage/settings_store.h"

namespace tavrin {

/// Registers or unregisters the program as something the user's session starts.
class LaunchAtLoginService {
public:
    explicit LaunchAtLoginService(LoginItem& loginItem) : loginItem_(loginItem) {}

    bool isEnabled() { return loginItem_.status() == LoginItemStatus::enabled; }

    /// Does nothing when the state is the wanted one already; the platform's error otherwise passes on.
    std::expected<void, PlatformError> enable() {
        return isEnabled() ? std::expected<void, PlatformError>{} : loginItem_.registerItem();
    }
    std::expected<void, PlatformError> disable() {
        return loginItem_.status() == LoginItemStatus::notRegistered ? std::expected<void, PlatformError>{}
                                                                     : loginItem_.unregisterItem();
    }

    /// What becomes of a login item that the settings ask for and the session does not have.
    enum class Missing { enable, accept };

    /// Makes settings and session agree. Where they differ the session counts, except that a missing item may
    /// be enabled first, unless the user switched it off in the desktop's own settings. An item is never
    /// disabled, and settings that cannot be read are left alone.
    void reconcile(SettingsStore& store, Missing missing) {
        const auto settings = store.load();
        if (!settings || settings->launchAtLogin == isEnabled())
            return;
        const bool isSwitchedOff = loginItem_.status() == LoginItemStatus::requiresApproval;
        if (settings->launchAtLogin && missing == Missing::enable && !isSwitchedOff && enable())
            return;
        static_cast<void>(
            store.change([&](AppSettings& current) { current.launchAtLogin = !settings->launchAtLogin; },
                         SettingsStore::Unreadable::refuse));
    }

private:
    LoginItem& loginItem_;
};

} // namespace tavrin
