#include "platform/sway/sway_window_system.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <unordered_map>

namespace tavrin {
namespace {

using Clock = std::chrono::steady_clock;

/// Sizes and places beyond this are no frames.
constexpr double extentLimit = 100000;

Rect wholePixels(const Rect& frame) {
    return {std::round(frame.x), std::round(frame.y), std::round(frame.width), std::round(frame.height)};
}

std::unordered_map<WindowID, const I3Window*> byID(const I3Tree& tree) {
    std::unordered_map<WindowID, const I3Window*> windows;
    for (const auto& window : tree.windows)
        windows.emplace(window.window.id, &window);
    return windows;
}

/// Size before position, since sway resizes about the middle. Absent when it cannot be said.
std::optional<std::string> placeCommand(const I3Window& window, const Rect& frame,
                                        const std::string& targetOutput) {
    auto command = fmt::format(
        "[con_id={}] fullscreen disable, resize set {} px {} px, move absolute position {} px {} px",
        window.window.id, frame.width, frame.height, frame.x, frame.y);
    // sway would bring a window of a hidden workspace to the one that is shown.
    if (!window.isWorkspaceShown && window.output == targetOutput) {
        const auto workspace = quotedForI3(window.workspace);
        if (!workspace)
            return std::nullopt;
        command += ", move container to workspace " + *workspace;
    }
    return command + "; ";
}

PlacementOutcome outcome(const I3Window& window, const Rect& wanted) {
    const auto& frame = window.window.frame;
    if (window.isFullscreen || frame.x != wanted.x || frame.y != wanted.y)
        return PlacementOutcome::timedOut;
    return frame == wanted ? PlacementOutcome::done : PlacementOutcome::adjusted;
}

} // namespace

bool SwayWindowSystem::reach(const std::string& socketPath) {
    const auto answer = I3Questions(socketPath).ask(I3Question::version);
    return answer && readI3Version(*answer).has_value();
}

std::expected<std::unique_ptr<SwayWindowSystem>, std::string>
SwayWindowSystem::open(SwaySession session, EventLoop& eventLoop, Scheduler& scheduler) {
    auto connection = WaylandConnection::open(eventLoop, session.waylandDisplay);
    if (!connection)
        return std::unexpected(connection.error());
    return std::unique_ptr<SwayWindowSystem>(
        new SwayWindowSystem(std::move(session), std::move(*connection), eventLoop, scheduler));
}

SwayWindowSystem::SwayWindowSystem(SwaySession session, std::unique_ptr<WaylandConnection> connection,
                                   EventLoop& eventLoop, Scheduler& scheduler)
    : session_(std::move(session)), questions_(session_.socketPath),
      events_(session_.socketPath, R"(["workspace","binding","shutdown"])", eventLoop, scheduler),
      connection_(std::move(connection)), outputs_(*connection_), keyboard_(*connection_),
      keys_(questions_, events_, keyboard_) {
    const auto emit = [this](WindowSystemEvent event) { return [this, event] { signals_[event].emit(); }; };
    watches_.push_back(outputs_.observeChanges(emit(WindowSystemEvent::screensChanged)));
    watches_.push_back(events_.observeConnection(emit(WindowSystemEvent::availabilityChanged)));
    watches_.push_back(keys_.observeRefused(emit(WindowSystemEvent::refusedKeysChanged)));
    watches_.push_back(connection_->observeLoss(emit(WindowSystemEvent::connectionLost)));
}

Token SwayWindowSystem::observe(WindowSystemEvent event, std::function<void()> handler) {
    return signals_[event].connect(std::move(handler));
}

std::string SwayWindowSystem::name() {
    const auto answer = questions_.ask(I3Question::version);
    const auto version = answer ? readI3Version(*answer) : std::nullopt;
    return version ? version->name : std::string();
}

std::optional<WindowSystemObstacle> SwayWindowSystem::obstacle() {
    const auto answer = questions_.ask(I3Question::version);
    if (!answer || !readI3Version(*answer))
        return WindowSystemObstacle::notAnswering;
    events_.reconnect(); // a no-op while it is connected
    return std::nullopt;
}

std::expected<I3Tree, I3Error> SwayWindowSystem::readTree(Seconds limit) {
    const auto answer = questions_.ask(I3Question::tree, {}, limit);
    if (!answer)
        return std::unexpected(answer.error());
    return readI3Tree(*answer);
}

std::expected<WindowListing, WindowSystemObstacle> SwayWindowSystem::list() {
    auto tree = readTree();
    // Without an output sway lists no windows, though they are there.
    if (!tree || tree->outputs.empty())
        return std::unexpected(WindowSystemObstacle::notAnswering);
    WindowListing listing{.activeWindow = tree->focused, .primaryScreen = outputs_.primaryFrame()};
    listing.windows.reserve(tree->windows.size());
    for (auto& window : tree->windows)
        listing.windows.push_back(std::move(window.window));
    return listing;
}

std::vector<PlacementOutcome> SwayWindowSystem::place(std::span<const WindowPlacement> placements,
                                                      Seconds patience) {
    std::vector<PlacementOutcome> outcomes(placements.size(), PlacementOutcome::timedOut);
    const auto deadline = Clock::now() + patience;
    const auto left = [&] { return std::clamp(Seconds(deadline - Clock::now()), Seconds{0}, Seconds{0.9}); };
    const auto before = readTree(left());
    if (!before)
        return outcomes;
    const auto known = byID(*before);
    std::string commands;
    std::vector<std::size_t> told;
    for (std::size_t i = 0; i < placements.size(); ++i) {
        const auto found = known.find(placements[i].window);
        if (!isSaneFrame(placements[i].frame, extentLimit)) {
            outcomes[i] = PlacementOutcome::refused;
        } else if (found == known.end()) {
            outcomes[i] = PlacementOutcome::gone;
        } else {
            const auto& window = *found->second;
            const auto frame = wholePixels(placements[i].frame);
            const auto target = outputFor(*before, frame);
            if (window.window.isTiled && window.output == target) {
                outcomes[i] = PlacementOutcome::tiled;
                continue;
            }
            const auto command =
                window.window.isTiled
                    ? moveTiledCommand(fmt::format("con_id={}", window.window.id), target) + "; "
                    : placeCommand(window, frame, target);
            if (!command) {
                outcomes[i] = PlacementOutcome::refused;
                continue;
            }
            commands += *command;
            told.push_back(i);
        }
    }
    if (told.empty() || !questions_.ask(I3Question::runCommand, commands, left()))
        return outcomes;
    const auto after = readTree(left());
    if (!after)
        return outcomes;
    const auto now = byID(*after);
    for (const auto i : told) {
        const auto found = now.find(placements[i].window);
        const auto frame = wholePixels(placements[i].frame);
        if (found == now.end())
            outcomes[i] = PlacementOutcome::gone;
        else if (known.at(placements[i].window)->window.isTiled)
            outcomes[i] = found->second->output == outputFor(*after, frame) ? PlacementOutcome::tiled
                                                                            : PlacementOutcome::timedOut;
        else
            outcomes[i] = outcome(*found->second, frame);
    }
    return outcomes;
}

std::vector<DesktopScreen> SwayWindowSystem::screens() {
    const auto tree = readTree();
    if (!tree)
        return {};
    const auto primary = outputs_.primary();
    std::vector<DesktopScreen> screens;
    for (const auto& output : outputs_.outputs()) {
        const auto hardware = outputHardware(output, session_.systemRoot);
        auto screen = std::ranges::find(screens, output.frame, &DesktopScreen::frame);
        if (screen == screens.end()) {
            const auto area = tree->workAreas.find(output.name);
            const bool isKnown = area != tree->workAreas.end() && isSaneFrame(area->second, extentLimit);
            screen = screens.insert(screen, {.frame = output.frame,
                                             .workArea = isKnown ? area->second : output.frame,
                                             .scale = output.scale});
        }
        screen->isPrimary |= output.name == primary;
        screen->hardware.push_back(hardware);
    }
    return screens;
}

void SwayWindowSystem::watchKeys(std::vector<KeyCombo> combos, std::function<void(const KeyCombo&)> pressed) {
    keys_.watch(std::move(combos), std::move(pressed));
}

std::vector<RefusedKey> SwayWindowSystem::refusedKeys() {
    return keys_.refused();
}

std::optional<std::uint32_t> SwayWindowSystem::keyPosition(std::uint32_t nativeScanCode) {
    return evdevPosition(nativeScanCode);
}

bool SwayWindowSystem::activate(WindowID window, const std::string&) {
    const auto answer = questions_.ask(I3Question::runCommand, fmt::format("[con_id={}] focus", window));
    return answer && readI3Results(*answer) == std::vector<bool>{true};
}

} // namespace tavrin
