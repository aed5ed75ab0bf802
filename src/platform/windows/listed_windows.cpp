#include "platform/windows/listed_windows.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tavrin {
namespace {

/// Window managers take up to ten milliseconds to place a window, on a busy machine longer.
constexpr Seconds patience{3};
constexpr Seconds patiencePerWindow{0.02};

} // namespace

ListedWindows::ListedWindows(WindowSystem& system, ApplicationCatalog& catalog, Scheduler& scheduler)
    : system_(system), catalog_(catalog), scheduler_(scheduler) {
    for (const auto event : {WindowSystemEvent::screensChanged, WindowSystemEvent::availabilityChanged})
        observers_.push_back(system_.observe(event, [this] { forget(); }));
}

std::expected<const ListedWindows::Windows*, WindowSystemObstacle> ListedWindows::windows() {
    if (!windows_) {
        keepUntilNextTurn();
        if (auto listing = system_.list())
            windows_ = take(std::move(*listing));
        else
            windows_ = std::unexpected(listing.error());
    }
    if (!*windows_)
        return std::unexpected(windows_->error());
    return &**windows_;
}

const ListedWindow* ListedWindows::active() {
    const auto all = windows();
    return all && active_ ? find(*active_) : nullptr;
}

const ListedWindow* ListedWindows::find(WindowID window) {
    const auto all = windows();
    const auto found = positions_.find(window);
    return all && found != positions_.end() ? &(**all)[found->second] : nullptr;
}

const std::vector<DesktopScreen>& ListedWindows::screens() {
    if (!screens_) {
        keepUntilNextTurn();
        screens_ = system_.screens();
    }
    return *screens_;
}

Rect ListedWindows::primaryFrame() {
    if (primary_)
        return *primary_;
    const auto& all = screens();
    const auto primary = std::ranges::find_if(all, &DesktopScreen::isPrimary);
    return primary == all.end() ? Rect{} : primary->frame;
}

std::vector<PlacementOutcome> ListedWindows::place(std::vector<WindowPlacement> placements) {
    if (placements.empty())
        return {};
    const auto primary = primaryFrame();
    for (auto& placement : placements) {
        placement.frame.x += primary.x;
        placement.frame.y += primary.y;
    }
    auto outcomes =
        system_.place(placements, patience + patiencePerWindow * static_cast<double>(placements.size()));
    outcomes.resize(placements.size(), PlacementOutcome::timedOut);
    patch(placements, outcomes);
    return outcomes;
}

void ListedWindows::patch(std::span<const WindowPlacement> placements,
                          std::span<const PlacementOutcome> outcomes) {
    if (!windows_ || !*windows_)
        return;
    const auto primary = primaryFrame();
    bool isKnown = true;
    for (std::size_t i = 0; i < placements.size(); ++i) {
        const auto& [window, frame] = placements[i];
        const auto found = positions_.find(window);
        if (outcomes[i] == PlacementOutcome::done && found != positions_.end())
            (**windows_)[found->second].window.frame = {frame.x - primary.x, frame.y - primary.y, frame.width,
                                                        frame.height};
        isKnown &= outcomes[i] == PlacementOutcome::done || outcomes[i] == PlacementOutcome::refused;
    }
    if (!isKnown)
        windows_.reset();
}

ListedWindows::Windows ListedWindows::take(WindowListing listing) {
    active_ = listing.activeWindow;
    primary_ = listing.primaryScreen;
    const auto primary = primaryFrame();
    std::map<ApplicationClues, ApplicationIdentity> identities; // windows of one application are many
    Windows windows;
    windows.reserve(listing.windows.size());
    positions_.clear();
    for (auto& window : listing.windows) {
        auto known = identities.find(window.application);
        if (known == identities.end())
            known = identities.emplace(window.application, catalog_.identify(window.application)).first;
        window.frame.x -= primary.x;
        window.frame.y -= primary.y;
        positions_.emplace(window.id, windows.size());
        windows.push_back({std::move(window), known->second});
    }
    return windows;
}

void ListedWindows::keepUntilNextTurn() {
    if (!turn_)
        turn_ = scheduler_.after(Seconds{0}, [this] { forget(); });
}

void ListedWindows::forget() {
    windows_.reset();
    screens_.reset();
    primary_.reset();
    turn_.release();
}

} // namespace tavrin
