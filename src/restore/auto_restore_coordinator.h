#pragma once

#include "display/monitor_profile_matcher.h"
#include "ports/runtime.h"
#include "ports/services.h"
#include "ports/session.h"
#include "restore/layout_restorer.h"

#include <functional>
#include <optional>

namespace tavrin {

/// Finds the layout that is restored without asking.
class MatchedDefaultLayoutResolver {
public:
    explicit MatchedDefaultLayoutResolver(ProfileProviding& profileProvider)
        : profileProvider_(profileProvider) {}

    /// The default layout of the setup that these displays are, or are most like. Absent when none or
    /// several are similar, when the setup has no default, or when the files cannot be read.
    std::optional<SavedLayout> resolve(const DisplaySnapshotCollection& snapshot) const;

private:
    ProfileProviding& profileProvider_;
    MonitorProfileMatcher profileMatcher_;
};

/// Restores the default layout of the recognised setup after the displays changed, after wake and after
/// unlock, each as the settings allow. A burst of events gives one restore; a restore that did not place
/// every window is tried again for a bounded time, and only its last attempt is reported.
class AutoRestoreCoordinator {
public:
    struct Collaborators {
        SettingsProviding& settingsProvider;
        ProfileProviding& profileProvider;
        RestoreServicing& restoreService;
        DisplaySnapshotProviding& displaySnapshotProvider;
        RestoreDebugStore* restoreDebugStore; ///< may be null
        SystemEvents& systemEvents;
        Scheduler& scheduler;
        WallClock& clock;
    };

    explicit AutoRestoreCoordinator(Collaborators collaborators);

    Seconds debounceInterval{0.5};
    Seconds initialDelay{2.0};
    Seconds retryInterval{2.0};
    Seconds maxTotalDuration{10.0};

    /// Called with the result of the last attempt of a sequence.
    std::function<void(const RestoreResult&)> onFeedback;

    /// Starts observing; does nothing when it already does.
    void start();

    /// Stops observing and ends a sequence that is under way, without a report.
    void stop();

private:
    void observe(SystemEvent event, bool (*isAllowed)(const AppSettings&), Token& token);
    /// Begins a new sequence at its debounce; one that is under way ends without a report.
    void schedule();
    void resolve();
    void attempt(const SavedLayout& layout, int number);
    void report(const SavedLayout& layout, const RestoreResult& result);
    int attemptCount() const;

    Collaborators collaborators_;
    MatchedDefaultLayoutResolver resolver_;
    Token displayObserver_;
    Token wakeObserver_;
    Token unlockObserver_;
    Token restoreTask_; ///< the sleep that the sequence is in; empty when idle
};

} // namespace tavrin
