#pragma once

#include "base/observable.h"
#include "ports/runtime.h"
#include "ports/services.h"

#include <string>

namespace tavrin {

/// The last known permission state, as the interface shows it. After the user was asked, it polls until
/// the permission is granted; polling never takes a permission away.
class PermissionStatusViewModel {
public:
    static constexpr Seconds pollInterval{2.0};

    PermissionStatusViewModel(AccessibilityPermissionServicing& service, Scheduler& scheduler,
                              AccessibilityPermissionState initial = AccessibilityPermissionState::unknown)
        : state(initial), service_(service), scheduler_(scheduler) {}

    Observable<AccessibilityPermissionState> state;
    Signal<> checked; ///< the desktop was asked; also where the answer is the same for another reason

    std::string title() const;
    std::string message() const;

    void refresh();
    /// Has the desktop ask the user, then polls.
    void requestAccess();
    void recheckAndPoll();
    void recheck();

private:
    void pollIfNeeded();
    void poll();

    AccessibilityPermissionServicing& service_;
    Scheduler& scheduler_;
    Token pollTimer_;
};

} // namespace tavrin
