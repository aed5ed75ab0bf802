#pragma once

#include "ports/application_catalog.h"
#include "ports/services.h"
#include "ui/exclusion_list_view.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// An application as the pane lists it.
struct ListedApplication {
    std::string bundleIdentifier;
    std::string name; ///< the identifier when nobody knows a name
    std::optional<std::string> iconName;

    bool operator==(const ListedApplication&) const = default;
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

    /// The excluded applications in the order of adding. Those that are not installed have the name of
    /// their open windows, if there are any.
    std::vector<ListedApplication> excludedApplications();

    /// The applications with open windows that are not excluded yet, by name.
    std::vector<ListedApplication> openApplications();

private:
    WindowListProviding& windowProvider_;
    ApplicationCatalog& catalog_;
    ProcessID ownProcess_;
};

} // namespace tavrin
