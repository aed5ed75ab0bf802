#pragma once

#include "ports/session.h"

namespace tavrin {

/// Never registered, and cannot be. A real one tells what the desktop will do at the next login, also when
/// the user changed that elsewhere.
class UnsupportedLoginItem final : public LoginItem {
public:
    LoginItemStatus status() override { return LoginItemStatus::notRegistered; }
    std::expected<void, PlatformError> registerItem() override;
    std::expected<void, PlatformError> unregisterItem() override;
};

} // namespace tavrin
