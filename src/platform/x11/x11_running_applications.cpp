#include "platform/x11/x11_running_applications.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace tavrin {
namespace {

/// By process and identifier: an order that does not depend on which window is in front.
auto orderKey(const X11Window& window) {
    return std::tie(*window.clues.pid, window.identity.bundleIdentifier);
}

} // namespace

template <class Predicate>
std::vector<RunningApplication> X11RunningApplications::applications(Freshness freshness,
                                                                     Predicate isWanted) {
    if (!table_.refresh(freshness))
        return {};
    std::vector<const X11Window*> windows;
    for (const auto* window : table_.windows())
        if (window->kind != WindowKind::desktopElement && window->clues.pid && isWanted(*window))
            windows.push_back(window);
    std::ranges::stable_sort(windows, [](auto* a, auto* b) { return orderKey(*a) < orderKey(*b); });
    const auto repeated =
        std::ranges::unique(windows, [](auto* a, auto* b) { return orderKey(*a) == orderKey(*b); });
    windows.erase(repeated.begin(), repeated.end());
    std::vector<RunningApplication> result;
    for (const auto* window : windows)
        result.push_back({.processIdentifier = *window->clues.pid,
                          .bundleIdentifier = window->identity.bundleIdentifier,
                          .localizedName = window->identity.name});
    return result;
}

std::vector<RunningApplication> X11RunningApplications::runningApplications() {
    return applications(Freshness::now, [](const X11Window&) { return true; });
}

std::optional<RunningApplication> X11RunningApplications::applicationWithProcessIdentifier(ProcessID pid) {
    const auto found =
        applications(Freshness::recent, [&](const X11Window& window) { return window.clues.pid == pid; });
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::vector<RunningApplication>
X11RunningApplications::applicationsWithBundleIdentifier(const std::string& identifier) {
    return applications(Freshness::recent, [&](const X11Window& window) {
        return window.identity.bundleIdentifier == identifier;
    });
}

} // namespace tavrin
