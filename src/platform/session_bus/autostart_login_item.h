#pragma once

#include "ports/file_system.h"
#include "ports/session.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// Starting at login through an entry in the user's autostart folder. The status is what the session would
/// do with the entry: `enabled` when it would start it, `notFound` when it would try but find no program or
/// leave it out on this desktop, `requiresApproval` when the user has switched the entry off (in the
/// desktop's own settings, which mark it so), else `notRegistered`.
/// Errors carry the system's error number and a description with path and cause.
class AutostartLoginItem final : public LoginItem {
public:
    static constexpr auto entryName = "org.tavrin.Tavrin.desktop";

    /// `program` is the absolute path of the program to start.
    AutostartLoginItem(FileSystem& files, std::filesystem::path program);

    LoginItemStatus status() override;

    /// Writes the user's entry in one step; keys of an older one that do not stand in the way are kept.
    std::expected<void, PlatformError> registerItem() override;

    /// Removes the user's entry, or hides the system's one where there is such.
    std::expected<void, PlatformError> unregisterItem() override;

private:
    std::optional<std::filesystem::path> systemEntry();

    /// The entry to change: the user's own, else the system's, else nothing.
    std::string currentContent();
    std::expected<void, PlatformError> writeUserEntry(const std::string& content);

    FileSystem& files_;
    std::filesystem::path program_;
    std::filesystem::path userEntry_;
    std::vector<std::filesystem::path> systemEntries_; ///< where one may be, best first
};

} // namespace tavrin
