#pragma once

#include "ports/session.h"

namespace tavrin {

/// Registers or unregisters the program as something the user's session starts.
class LaunchAtLoginService {
public:
    explicit LaunchAtLoginService(LoginItem& loginItem) : loginItem_(loginItem) {}

    bool isEnabled() { return loginItem_.status() == LoginItemStatus::enabled; }

    /// The user has switched it off outside of the program, in the desktop's own settings.
    bool isSwitchedOff() { return loginItem_.status() == LoginItemStatus::requiresApproval; }

    /// Does nothing when the state is the wanted one already; the platform's error otherwise passes on.
    std::expected<void, PlatformError> enable() {
        return isEnabled() ? std::expected<void, PlatformError>{} : loginItem_.registerItem();
    }
    std::expected<void, PlatformError> disable() {
        return loginItem_.status() == LoginItemStatus::notRegistered ? std::expected<void, PlatformError>{}
                                                                     : loginItem_.unregisterItem();
    }

private:
    LoginItem& loginItem_;
};

} // namespace tavrin
