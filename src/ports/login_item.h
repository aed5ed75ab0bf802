#pragma once

#include <expected>
#include <string>

namespace tavrin {

enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// A failure of the platform, in its own words.
struct PlatformError {
    int code = 0;
    std::string localizedDescription;
    bool operator==(const PlatformError&) const = default;
};

/// Starting the program at login.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// What the desktop would really do at the next login.
    virtual LoginItemStatus status() = 0;
    virtual std::expected<void, PlatformError> registerItem() = 0;
    virtual std::expected<void, PlatformError> unregisterItem() = 0;
};

} // namespace tavrin
