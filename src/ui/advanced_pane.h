#pragma once

#include "display/monitor_profile_matcher.h"
#include "ports/session.h"
#include "records/restore_result.h"
#include "ui/user_interface.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What is needed to look into a fault. It contains no window titles and no names of layouts.
struct TroubleshootingReport {
    struct Line {
        std::string label;
        std::string value;
        bool operator==(const Line&) const = default;
    };
    struct Display {
        std::string title; ///< for example "Display 1 (built-in)"
        std::vector<Line> lines;
        bool operator==(const Display&) const = default;
    };

    std::vector<Line> program; ///< versions, desktop, permission
    std::vector<Display> displays;
    std::string arrangementSignature;
    std::string setup; ///< the verdict on which saved setup is connected
    std::filesystem::path dataDirectory;
    std::vector<Line> lastAttempt; ///< empty before the first one

    bool operator==(const TroubleshootingReport&) const = default;

    /// The whole report as plain text.
    std::string text() const;
};

/// The lines about the connected displays, as they are recognised.
std::vector<TroubleshootingReport::Display> describeDisplays(const DisplaySnapshotCollection& displays);

/// The counts of a restore in words, for example "4 of 5 windows in place, 1 not open, 0 not moved".
std::string countsText(const RestoreResult& result);

/// The kind of a layout in words.
std::string kindText(SavedLayoutKind kind);

/// The permission, the last restore, the rule for extra windows, and what helps when something is wrong.
class AdvancedPane {
public:
    static constexpr std::string_view clusterLabel =
        "Cluster extra same-app windows into the dominant saved region";
    static constexpr std::string_view clusterExplanation =
        "When a restore finds more open windows for an app than were captured, Tavrin can send the extras to "
        "the saved region that had the most windows for that app.";
    static constexpr std::string_view noAttemptText = "No restore attempt recorded yet in this app session.";

    /// The collaborators and `isTroubleshootingExpanded`, which the window keeps while it is open, outlive
    /// the pane.
    AdvancedPane(const SettingsCollaborators& collaborators, bool& isTroubleshootingExpanded);

    /// The view is shown, or shown again: reads settings and displays anew.
    void appear();

    std::string permissionTitle() const { return collaborators_.permissionStatusViewModel.title(); }
    std::string permissionMessage() const { return collaborators_.permissionStatusViewModel.message(); }
    bool isPermissionGranted() const;
    void recheckPermission();

    const std::optional<RestoreAttemptDiagnostics>& lastAttempt() const {
        return collaborators_.restoreDebugStore.lastAttempt.value();
    }
    /// The attempt with every error in full; empty before the first one.
    std::string lastAttemptText() const;

    bool clustersExtraAppWindows() const { return clustersExtraAppWindows_; }
    void setClustersExtraAppWindows(bool isOn);

    /// The troubleshooting section is unfolded.
    bool isTroubleshootingExpanded() const { return isTroubleshootingExpanded_; }
    void setTroubleshootingExpanded(bool isExpanded);
    const TroubleshootingReport& report() const { return report_; }
    /// False when the folder could not be shown.
    bool openDataDirectory();

    Signal<> changed;

private:
    void readReport();

    const SettingsCollaborators& collaborators_;
    bool clustersExtraAppWindows_ = true;
    bool& isTroubleshootingExpanded_;
    TroubleshootingReport report_;
    std::vector<Token> subscriptions_;
};

} // namespace tavrin
