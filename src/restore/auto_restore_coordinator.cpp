#include "restore/auto_restore_coordinator.h"

#include "base/fatal.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavrin {

std::optional<SavedLayout>
MatchedDefaultLayoutResolver::resolve(const DisplaySnapshotCollection& snapshot) const {
    const auto setups = profileProvider_.load();
    if (!setups)
        return std::nullopt;
    const MatchResult verdict = profileMatcher_.match(snapshot, setups->profiles());
    const MonitorProfile* profile = nullptr;
    if (const auto* exact = std::get_if<match::Exact>(&verdict))
        profile = &exact->profile;
    else if (const auto* suggested = std::get_if<match::Suggested>(&verdict))
        profile = &suggested->profile;
    if (!profile)
        return std::nullopt;
    const auto layoutID = profileProvider_.defaultLayoutID(*profile);
    const SavedLayout* layout = layoutID ? setups->layout(*layoutID) : nullptr;
    return layout ? std::optional(*layout) : std::nullopt;
}

AutoRestoreCoordinator::AutoRestoreCoordinator(Collaborators collaborators)
    : collaborators_(collaborators), resolver_(collaborators.profileProvider) {}

void AutoRestoreCoordinator::start() {
    if (displayObserver_)
        return;
    // A change of the displays does not tell a connection from a disconnection, so either setting lets
    // every change through.
    observe(
        SystemEvent::screenParametersChanged,
        [](const AppSettings& settings) {
            return settings.autoRestoreOnConnect || settings.autoRestoreOnDisconnect;
        },
        displayObserver_);
    observe(
        SystemEvent::didWake, [](const AppSettings& settings) { return settings.autoRestoreOnWake; },
        wakeObserver_);
    observe(
        SystemEvent::screenIsUnlocked,
        [](const AppSettings& settings) { return settings.autoRestoreOnUnlockLogin; }, unlockObserver_);
}

void AutoRestoreCoordinator::stop() {
    displayObserver_.release();
    wakeObserver_.release();
    unlockObserver_.release();
    restoreTask_.release();
}

void AutoRestoreCoordinator::observe(SystemEvent event, bool (*isAllowed)(const AppSettings&), Token& token) {
    token = collaborators_.systemEvents.observe(event, [this, isAllowed] {
        if (const auto settings = collaborators_.settingsProvider.load(); settings && isAllowed(*settings))
            schedule();
    });
}

void AutoRestoreCoordinator::schedule() {
    restoreTask_ = collaborators_.scheduler.after(debounceInterval, [this] { resolve(); });
}

void AutoRestoreCoordinator::resolve() {
    restoreTask_.release();
    auto layout = resolver_.resolve(collaborators_.displaySnapshotProvider.currentSnapshot());
    if (!layout)
        return;
    restoreTask_ = collaborators_.scheduler.after(
        initialDelay, [this, layout = std::move(*layout)] { attempt(layout, 1); });
}

void AutoRestoreCoordinator::attempt(const SavedLayout& layout, int number) {
    restoreTask_.release();
    const RestoreResult result = collaborators_.restoreService.restore(layout);
    if (result.isCompleteSuccess() || number >= attemptCount()) {
        report(layout, result);
        return;
    }
    restoreTask_ = collaborators_.scheduler.after(retryInterval,
                                                  [this, layout, number] { attempt(layout, number + 1); });
}

void AutoRestoreCoordinator::report(const SavedLayout& layout, const RestoreResult& result) {
    if (collaborators_.restoreDebugStore)
        collaborators_.restoreDebugStore->record(collaborators_.clock.now(), RestoreTriggerSource::automation,
                                                 layout, result);
    if (onFeedback)
        onFeedback(result);
}

int AutoRestoreCoordinator::attemptCount() const {
    const double quotient = std::trunc(maxTotalDuration / retryInterval);
    if (!std::isfinite(quotient) || std::abs(quotient) > std::numeric_limits<int>::max())
        fatal("automatic restore with impossible intervals");
    return std::max(static_cast<int>(quotient), 1);
}

} // namespace tavrin
