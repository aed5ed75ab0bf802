#pragma once

#include "ports/services.h"
#include "restore/restore_matcher.h"

#include <filesystem>

namespace tavrin {

/// Carries out one restore: pairs the layout's entries with the open windows, moves every window that is
/// not in place, and sends surplus windows of the same applications after them. It never starts an
/// application and never creates a window.
class RestoreService : public RestoreServicing {
public:
    struct Collaborators {
        WindowListProviding& windowProvider;
        WindowMoving& windowMover;
        DisplaySnapshotProviding& displaySnapshotProvider;
        SettingsProviding* settingsProvider; ///< null: surplus windows are always sent after the others
        RunningApplicationResolving& pidResolver;
        AccessibilityPermissionServicing& permissionService;
        std::string grantPermission = {}; ///< where to grant it, as a sentence; empty for the usual one
    };

    /// `bundlePath`: the running program's file, named in the text about a missing permission.
    RestoreService(Collaborators collaborators, std::filesystem::path bundlePath,
                   RestoreMatcher matcher = RestoreMatcher{})
        : collaborators_(std::move(collaborators)), bundlePath_(std::move(bundlePath)), matcher_(matcher) {}

    RestoreResult restore(const SavedLayout& layout) override;

private:
    static constexpr double frameMatchTolerance = 2.0;

    struct Attempt {
        const MatchedPair& pair;
        bool isInPlace = false;
        std::optional<std::size_t> move; ///< its number; absent when it is in place or has no known process
    };

    /// What to do about each pair; appends the moves, which refer to the pairs.
    std::vector<Attempt> planMoves(const std::vector<MatchedPair>& pairs, std::vector<WindowMove>& moves);
    bool clustersExtraWindows() const;

    Collaborators collaborators_;
    std::filesystem::path bundlePath_;
    RestoreMatcher matcher_;
};

} // namespace tavrin
