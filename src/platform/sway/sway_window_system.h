#pragma once

#include "platform/i3/i3_tree.h"
#include "platform/sway/sway_keys.h"
#include "platform/wayland/wayland_keyboard.h"
#include "platform/wayland/wayland_outputs.h"
#include "platform/windows/window_system.h"

#include <filesystem>
#include <memory>

namespace tavrin {

/// Where a sway session is.
struct SwaySession {
    std::string socketPath;
    std::string waylandDisplay;               ///< empty means the one of the environment
    std::filesystem::path systemRoot{"/sys"}; ///< see `outputHardware`
};

/// The windows of sway, over its socket; its outputs, as it tells every Wayland client.
class SwayWindowSystem final : public WindowSystem {
public:
    /// Whether sway answers at that socket.
    static bool reach(const std::string& socketPath);

    /// The collaborators must outlive it. The error is a text for the user.
    static std::expected<std::unique_ptr<SwayWindowSystem>, std::string>
    open(SwaySession session, EventLoop& eventLoop, Scheduler& scheduler);

    std::string name() override;
    std::optional<WindowSystemObstacle> obstacle() override;
    std::expected<WindowListing, WindowSystemObstacle> list() override;
    std::vector<PlacementOutcome> place(std::span<const WindowPlacement> placements,
                                        Seconds patience) override;
    std::vector<DesktopScreen> screens() override;
    void watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) override;
    bool reservesKeys() const override { return true; }
    std::vector<RefusedKey> refusedKeys() override;
    std::optional<std::uint32_t> keyPosition(std::uint32_t nativeScanCode) override;
    bool activate(WindowID window, const std::string& token) override;
    std::optional<Point> pointer() override { return std::nullopt; }
    Token observe(WindowSystemEvent event, std::function<void()> handler) override;

private:
    SwayWindowSystem(SwaySession session, std::unique_ptr<WaylandConnection> connection, EventLoop& eventLoop,
                     Scheduler& scheduler);

    std::expected<I3Tree, I3Error> readTree(Seconds limit = Seconds{0.8});

    SwaySession session_;
    I3Questions questions_;
    I3Events events_;
    std::unique_ptr<WaylandConnection> connection_;
    WaylandOutputs outputs_;
    WaylandKeyboard keyboard_;
    SwayKeys keys_;
    std::map<WindowSystemEvent, Signal<>> signals_;
    std::vector<Token> watches_;
};

} // namespace tavrin
