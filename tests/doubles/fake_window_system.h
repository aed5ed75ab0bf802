#pragma once

#include "base/signal.h"
#include "platform/windows/window_system.h"

#include <map>

namespace tavrin::testing {

/// A window system that answers what a test puts in.
struct FakeWindowSystem : WindowSystem {
    std::optional<WindowSystemObstacle> obstacleNow;
    WindowListing listing;
    std::vector<DesktopScreen> screenList;
    std::vector<PlacementOutcome> outcomes; ///< of the next placements; `done` for those beyond
    std::vector<WindowPlacement> placed;
    int listings = 0, screenQuestions = 0;
    std::map<WindowSystemEvent, Signal<>> signals;

    std::string name() override { return "Fake"; }
    std::optional<WindowSystemObstacle> obstacle() override { return obstacleNow; }
    std::expected<WindowListing, WindowSystemObstacle> list() override {
        ++listings;
        if (obstacleNow)
            return std::unexpected(*obstacleNow);
        return listing;
    }
    std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements, Seconds) override {
        placed.assign(placements.begin(), placements.end());
        auto results = std::exchange(outcomes, {});
        results.resize(placements.size(), PlacementOutcome::done);
        return results;
    }
    std::vector<DesktopScreen> screens() override {
        ++screenQuestions;
        return screenList;
    }
    void watchKeys(std::vector<KeyCombo>, std::function<void(const KeyCombo&)>) override {}
    std::vector<RefusedKey> refusedKeys() override { return {}; }
    std::optional<std::uint32_t> keyPosition(std::uint32_t) override { return std::nullopt; }
    bool activate(WindowID, const std::string&) override { return false; }
    std::optional<Point> pointer() override { return std::nullopt; }
    Token observe(WindowSystemEvent event, std::function<void()> handler) override {
        return signals[event].connect(std::move(handler));
    }
};

} // namespace tavrin::testing
