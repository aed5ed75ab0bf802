#include "platform/i3/i3_tiled_windows.h"

#include <fmt/format.h>

namespace tavrin {

std::map<std::uint32_t, I3Window> I3TiledWindows::read(I3Tree& tree) {
    std::map<std::uint32_t, I3Window> windows;
    const auto answer = questions_.ask(I3Question::tree);
    auto told = answer ? readI3Tree(*answer) : std::unexpected(answer.error());
    if (!told)
        return windows;
    tree = std::move(*told);
    for (auto& window : tree.windows)
        if (window.xWindow && window.window.isTiled)
            windows.emplace(*window.xWindow, window);
    return windows;
}

std::set<std::uint32_t> I3TiledWindows::tiled() {
    I3Tree tree;
    std::set<std::uint32_t> ids;
    for (const auto& [id, window] : read(tree))
        ids.insert(id);
    return ids;
}

std::map<WindowID, PlacementOutcome> I3TiledWindows::place(std::span<const WindowPlacement> placements) {
    std::map<WindowID, PlacementOutcome> outcomes;
    I3Tree tree;
    const auto windows = read(tree);
    std::string commands;
    std::map<std::uint32_t, std::string> targets;
    for (const auto& placement : placements) {
        const auto found = windows.find(static_cast<std::uint32_t>(placement.window));
        if (found == windows.end())
            continue;
        const auto target = outputFor(tree, placement.frame);
        outcomes[placement.window] = PlacementOutcome::tiled;
        if (found->second.output == target)
            continue;
        commands += moveTiledCommand(fmt::format("id={}", found->first), target) + "; ";
        targets[found->first] = target;
    }
    if (targets.empty() || !questions_.ask(I3Question::runCommand, commands))
        return outcomes;
    const auto now = read(tree);
    for (const auto& [id, target] : targets) {
        const auto found = now.find(id);
        if (found == now.end())
            outcomes[id] = PlacementOutcome::gone;
        else if (found->second.output != target)
            outcomes[id] = PlacementOutcome::timedOut;
    }
    return outcomes;
}

} // namespace tavrin
