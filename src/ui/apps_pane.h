#pragma once

#include "base/signal.h"
#include "ports/application_catalog.h"
#include "ports/services.h"
#include "storage/settings_store.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Keeps applications out of every captured layout. Entries that are no identifier, and files that cannot be
/// read or written, are passed over in silence; the list then shows what the file holds.
class ExclusionListView {
public:
    static constexpr std::string_view title = "Excluded Apps";
    static constexpr std::string_view explanation = "These apps are always skipped during layout capture.";
    static constexpr std::string_view emptyText = "No excluded apps.";
    /// `example`: an identifier as this desktop has them.
    static std::string placeholder(const std::string& example) { return "Bundle ID (e.g. " + example + ")"; }

    explicit ExclusionListView(SettingsStore& settingsStore) : settingsStore_(settingsStore) {}

    /// The view is shown, or shown again: reads the list from the settings.
    void appear();

    /// In the order of adding.
    const std::vector<std::string>& excludedBundleIDs() const { return excludedBundleIDs_; }

    const std::string& newBundleID() const { return newBundleID_; }
    void setNewBundleID(std::string text);

    /// The text in the field, without blanks around it, is a new identifier of at least two parts.
    bool canAdd() const;
    /// Adds the text in the field and, once it is saved, clears the field; does nothing when it cannot be
    /// added.
    void add();
    /// Adds an identifier that a running application really has, whatever its form.
    void addRunning(const std::string& bundleID);
    void remove(const std::string& bundleID);

    Signal<> changed;

private:
    bool contains(std::string_view bundleID) const;
    void append(std::string bundleID);
    void save(const std::function<void(std::vector<std::string>&)>& edit);

    SettingsStore& settingsStore_;
    std::vector<std::string> excludedBundleIDs_;
    std::string newBundleID_;
};

/// An application as the pane lists it.
struct ListedApplication {
    std::string bundleIdentifier;
    std::string name; ///< the identifier when no name is known
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
