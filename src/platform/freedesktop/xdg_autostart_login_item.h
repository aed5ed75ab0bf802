#pragma once

#include "platform/freedesktop/xdg_paths.h"
#include "ports/file_system.h"
#include "ports/session.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tavrin {

/// Starting at login through an entry in the user's autostart folder. The status is what the session would
/// do with the entry: `enabled` when it would start it, `notFound` when it would try but find no program or
/// leave it out on this desktop, else `notRegistered`; also when the user switched it off by other means.
/// Errors carry the system's error number and a description with path and cause.
class XdgAutostartLoginItem final : public LoginItem {
public:
    static constexpr auto entryName = "org.tavrin.Tavrin.desktop";

    /// `program` is the absolute path of the program to start.
    XdgAutostartLoginItem(FileSystem& files, std::filesystem::path program,
                          Environment environment = processEnvironment);

    LoginItemStatus status() override;

    /// Writes the user's entry in one step; keys of an older one that do not stand in the way are kept.
    std::expected<void, PlatformError> registerItem() override;

    /// Removes the user's entry, or hides the system's one where there is such.
    std::expected<void, PlatformError> unregisterItem() override;

private:
    std::filesystem::path userEntry() const;
    std::optional<std::filesystem::path> systemEntry();

    /// The entry to change: the user's own, else the system's, else nothing.
    std::string currentContent();
    std::expected<void, PlatformError> writeUserEntry(const std::string& content);

    FileSystem& files_;
    std::filesystem::path program_;
    Environment environment_;
    XdgPaths paths_;
};

} // namespace tavrin
