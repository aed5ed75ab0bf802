#pragma once

#include "ports/application_catalog.h"
#include "ports/window_list_providing.h"
#include "ui/exclusion_list_view.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// An application of which a window is open.
struct OpenApplication {
    std::string bundleIdentifier;
    std::string name;
    std::optional<std::string> iconName;

    bool operator==(const OpenApplication&) const = default;
};

/// The list of excluded applications, with the applications that are open now to pick from.
class AppsPane {
public:
    static constexpr std::string_view description =
        "Exclude apps from capture when they should never be part of a saved layout.";

    /// `ownProcess`: this program, which is never part of a layout anyway.
    AppsPane(SettingsStore& settingsStore, WindowListProviding& windowProvider, ApplicationCatalog& catalog,
             ProcessID ownProcess)
        : exclusions(settingsStore), windowProvider_(windowProvider), catalog_(catalog),
          ownProcess_(ownProcess) {}

    ExclusionListView exclusions;

    /// The applications with open windows that are not excluded yet, by name.
    std::vector<OpenApplication> openApplications();

    /// The icon of an application; absent when it is not installed.
    std::optional<std::string> iconName(const std::string& bundleIdentifier) {
        return catalog_.iconName(bundleIdentifier);
    }

private:
    WindowListProviding& windowProvider_;
    ApplicationCatalog& catalog_;
    ProcessID ownProcess_;
};

} // namespace tavrin
