#include "restore/restore_service.h"

#include "base/fatal.h"

#include <cmath>

namespace tavrin {
namespace {

bool isInPlace(const MatchedPair& pair, double tolerance) {
    const Rect& now = pair.windowInfo.frame;
    const Rect& target = pair.translatedFrame;
    return std::abs(now.x - target.x) <= tolerance && std::abs(now.y - target.y) <= tolerance &&
           std::abs(now.width - target.width) <= tolerance &&
           std::abs(now.height - target.height) <= tolerance;
}

} // namespace

RestoreResult RestoreService::restore(const SavedLayout& layout) {
    const auto total = static_cast<std::int64_t>(layout.entries.size());
    if (collaborators_.permissionService.currentState() != AccessibilityPermissionState::granted)
        return {total,
                0,
                total,
                {"Accessibility access is disabled for Tavrin. Open System Settings > Privacy & Security > "
                 "Accessibility and enable this app: " +
                 bundlePath_.string()},
                0,
                total};
    const std::vector<WindowInfo> windows = collaborators_.windowProvider.currentWindows();
    if (windows.empty())
        return {total, 0, total, {"No open windows found"}};
    const auto displays = collaborators_.displaySnapshotProvider.currentSnapshot().displays;
    const auto pairs = matcher_.pairs(layout, windows, displays);
    const auto overflow = clustersExtraWindows() ? matcher_.overflowPairs(layout, windows, displays, pairs)
                                                 : std::vector<MatchedPair>{};

    std::vector<std::string> errors;
    const auto pidOf = [&](const WindowInfo& window) {
        return window.ownerPID ? window.ownerPID : collaborators_.pidResolver.processIdentifier(window);
    };
    const auto move = [&](ProcessID pid, const MatchedPair& pair, const char* prefix) {
        const auto outcome =
            collaborators_.windowMover.move(pid, pair.savedEntry, pair.windowInfo, pair.translatedFrame);
        if (const auto* failed = std::get_if<WindowMoveFailed>(&outcome)) {
            errors.push_back(pair.windowInfo.appName + prefix + failed->message);
            return false;
        }
        return true;
    };

    std::int64_t inPlace = 0;
    for (const MatchedPair& pair : pairs) {
        if (isInPlace(pair, frameMatchTolerance)) {
            ++inPlace;
        } else if (const auto pid = pidOf(pair.windowInfo); !pid) {
            errors.push_back("Could not resolve PID for " + pair.windowInfo.appName);
        } else if (move(*pid, pair, ": ")) {
            ++inPlace;
        }
    }
    for (const MatchedPair& pair : overflow)
        if (!isInPlace(pair, frameMatchTolerance))
            if (const auto pid = pidOf(pair.windowInfo))
                move(*pid, pair, ": overflow cluster move failed: ");

    const auto pairCount = static_cast<std::int64_t>(pairs.size());
    const auto moveFailures = checkedDifference(pairCount, inPlace);
    const auto unmatched = checkedDifference(total, pairCount);
    return {total, inPlace, checkedSum(unmatched, moveFailures), std::move(errors), unmatched, moveFailures};
}

bool RestoreService::clustersExtraWindows() const {
    if (!collaborators_.settingsProvider)
        return true;
    const auto settings = collaborators_.settingsProvider->load();
    return !settings || settings->clusterExtraAppWindows;
}

} // namespace tavrin
