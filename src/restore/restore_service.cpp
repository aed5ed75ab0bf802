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

/// Enters in `result` what is worth reporting of a move.
bool isSuccess(const WindowMoveOutcome& outcome, const std::string& application, const char* prefix,
               RestoreResult& result) {
    if (const auto* failed = std::get_if<WindowMoveFailed>(&outcome)) {
        result.errors.push_back(application + prefix + failed->message);
        return false;
    }
    if (const auto& note = std::get<WindowMoved>(outcome).note; !note.empty())
        result.notes.push_back(application + ": " + note);
    return true;
}

} // namespace

RestoreResult RestoreService::restore(const SavedLayout& layout) {
    const auto total = static_cast<std::int64_t>(layout.entries.size());
    if (collaborators_.permissionService.currentState() != AccessibilityPermissionState::granted)
        return {total,
                0,
                total,
                {"Accessibility access is disabled for Tavrin. " +
                 (collaborators_.grantPermission.empty()
                      ? "Open System Settings > Privacy & Security > Accessibility and enable this app: " +
                            bundlePath_.string()
                      : collaborators_.grantPermission)},
                0,
                total};
    const std::vector<WindowInfo> windows = collaborators_.windowProvider.currentWindows();
    if (windows.empty())
        return {total, 0, total, {"No open windows found"}};
    const auto displays = collaborators_.displaySnapshotProvider.currentSnapshot().displays;
    const auto pairs = matcher_.pairs(layout, windows, displays);
    const auto overflow = clustersExtraWindows() ? matcher_.overflowPairs(layout, windows, displays, pairs)
                                                 : std::vector<MatchedPair>{};

    // All moves go to the desktop together; their outcomes are reported in the order of the pairs.
    std::vector<WindowMove> moves;
    const auto attempts = planMoves(pairs, moves);
    const auto overflowAttempts = planMoves(overflow, moves);
    const auto outcomes = collaborators_.windowMover.moveAll(moves);

    RestoreResult result;
    const auto isMoved = [&](const Attempt& attempt, const char* prefix) {
        return isSuccess(outcomes.at(*attempt.move), attempt.pair.windowInfo.appName, prefix, result);
    };
    for (const Attempt& attempt : attempts) {
        if (attempt.isInPlace)
            ++result.matched;
        else if (!attempt.move)
            result.errors.push_back("Could not resolve PID for " + attempt.pair.windowInfo.appName);
        else if (isMoved(attempt, ": "))
            ++result.matched;
    }
    for (const Attempt& attempt : overflowAttempts)
        if (attempt.move)
            isMoved(attempt, ": overflow cluster move failed: ");

    const auto pairCount = static_cast<std::int64_t>(pairs.size());
    result.totalSaved = total;
    result.moveFailureCount = checkedDifference(pairCount, result.matched);
    result.unmatchedCount = checkedDifference(total, pairCount);
    result.skipped = checkedSum(result.unmatchedCount, result.moveFailureCount);
    return result;
}

std::vector<RestoreService::Attempt> RestoreService::planMoves(const std::vector<MatchedPair>& pairs,
                                                               std::vector<WindowMove>& moves) {
    std::vector<Attempt> attempts;
    for (const MatchedPair& pair : pairs) {
        auto& attempt = attempts.emplace_back(pair, isInPlace(pair, frameMatchTolerance), std::nullopt);
        if (attempt.isInPlace)
            continue;
        const auto& window = pair.windowInfo;
        const auto pid =
            window.ownerPID ? window.ownerPID : collaborators_.pidResolver.processIdentifier(window);
        if (!pid)
            continue;
        attempt.move = moves.size();
        moves.push_back({*pid, pair.savedEntry, window, pair.translatedFrame});
    }
    return attempts;
}

bool RestoreService::clustersExtraWindows() const {
    if (!collaborators_.settingsProvider)
        return true;
    const auto settings = collaborators_.settingsProvider->load();
    return !settings || settings->clusterExtraAppWindows;
}

} // namespace tavrin
