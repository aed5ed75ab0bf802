#include "ui/permission_status_view_model.h"

#include "base/fatal.h"

namespace tavrin {

std::string PermissionStatusViewModel::title() const {
    switch (state.value()) {
    case AccessibilityPermissionState::unknown:
        return "Checking Accessibility";
    case AccessibilityPermissionState::denied:
        return "Accessibility permission required";
    case AccessibilityPermissionState::granted:
        return "Accessibility permission granted";
    }
    fatal("a permission state without a title");
}

std::string PermissionStatusViewModel::message() const {
    switch (state.value()) {
    case AccessibilityPermissionState::unknown:
        return "Tavrin is preparing its menu bar utility shell and checking whether Accessibility access is "
               "already available.";
    case AccessibilityPermissionState::denied:
        return "Tavrin needs Accessibility permission to read and restore the windows you already arranged. "
               "It "
               "does not launch missing apps or manage closed windows.";
    case AccessibilityPermissionState::granted:
        return "Tavrin can now inspect the current window arrangement and keep the menu bar utility ready "
               "for "
               "capture and restore flows.";
    }
    fatal("a permission state without a message");
}

void PermissionStatusViewModel::refresh() {
    state.set(service_.currentState());
    checked.emit();
}

void PermissionStatusViewModel::requestAccess() {
    state.set(service_.requestAccess());
    checked.emit();
    pollIfNeeded();
}

void PermissionStatusViewModel::recheckAndPoll() {
    recheck();
    pollIfNeeded();
}

void PermissionStatusViewModel::recheck() {
    state.set(service_.recheckAccess());
}

void PermissionStatusViewModel::pollIfNeeded() {
    if (state.value() == AccessibilityPermissionState::granted || pollTimer_)
        return;
    pollTimer_ = scheduler_.every(pollInterval, [this] { poll(); });
}

void PermissionStatusViewModel::poll() {
    if (service_.currentState() != AccessibilityPermissionState::granted)
        return;
    pollTimer_.release();
    state.set(AccessibilityPermissionState::granted);
}

} // namespace tavrin
