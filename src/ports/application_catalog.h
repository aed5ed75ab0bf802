#pragma once

#include "records/windows.h"

#include <optional>
#include <string>

namespace tavrin {

/// What a window says of the application it belongs to. All texts come from other programs.
struct ApplicationClues {
    std::optional<ProcessID> pid;
    std::optional<std::string> applicationID; ///< the identifier the application declares for itself
    std::optional<std::string> instanceName;  ///< the window class's instance, for example "xterm"
    std::optional<std::string> className;     ///< the window class, for example "XTerm"

    auto operator<=>(const ApplicationClues&) const = default;
};

struct ApplicationIdentity {
    std::optional<std::string> bundleIdentifier; ///< absent only when there is no clue at all
    std::optional<std::string> name;             ///< as shown to the user; absent likewise
    std::optional<std::string> iconName;         ///< of the installed application; absent without one

    bool operator==(const ApplicationIdentity&) const = default;
};

/// The installed applications: turns the clues of a window into the application's identity.
class ApplicationCatalog {
public:
    virtual ~ApplicationCatalog() = default;

    /// Always the same answer for the same clues while the installed applications and the process stay.
    virtual ApplicationIdentity identify(const ApplicationClues& clues) = 0;

    /// The application with that bundle identifier; without name and icon when it is not installed.
    virtual ApplicationIdentity installedApplication(const std::string& bundleIdentifier) = 0;
};

} // namespace tavrin
