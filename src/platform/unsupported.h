#pragma once

#include "platform/windows/window_system.h"

namespace tavrin {

/// An honest "not available" for everything, and the template of a new window system. The program runs on it,
/// with the permission denied.
class UnsupportedWindowSystem final : public WindowSystem {
public:
    std::string name() override { return {}; }
    std::optional<WindowSystemObstacle> obstacle() override {
        return WindowSystemObstacle::unsupportedCompositor;
    }
    std::expected<WindowListing, WindowSystemObstacle> list() override {
        return std::unexpected(WindowSystemObstacle::unsupportedCompositor);
    }
    std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements, Seconds) override {
        return std::vector(placements.size(), PlacementOutcome::refused);
    }
    std::vector<DesktopScreen> screens() override { return {}; }
    void watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)>) override {
        watched_ = std::move(combos);
    }
    std::vector<RefusedKey> refusedKeys() override {
        std::vector<RefusedKey> refused;
        for (const auto& combo : watched_)
            refused.push_back({combo, "This desktop does not let other programs use shortcuts."});
        return refused;
    }
    std::optional<std::uint32_t> keyPosition(std::uint32_t) override { return std::nullopt; }
    bool activate(WindowID, const std::string&) override { return false; }
    std::optional<Point> pointer() override { return std::nullopt; }
    Token observe(WindowSystemEvent, std::function<void()>) override { return {}; }

private:
    std::vector<KeyCombo> watched_;
};

} // namespace tavrin
