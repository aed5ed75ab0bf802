#pragma once

#include "platform/i3/i3_tree.h"

#include <map>
#include <set>
#include <span>

namespace tavrin {

/// What i3 keeps in its tiling, of the windows that are read and moved by other means.
class I3TiledWindows {
public:
    explicit I3TiledWindows(std::string socketPath) : questions_(std::move(socketPath)) {}

    /// By X window; empty when i3 does not answer.
    std::set<std::uint32_t> tiled();

    /// Places those of the windows that are tiled, each on the output that its frame is for. An outcome for
    /// each of these; nothing for the others.
    std::map<WindowID, PlacementOutcome> place(std::span<const WindowPlacement> placements);

private:
    std::map<std::uint32_t, I3Window> read(I3Tree& tree);

    I3Questions questions_;
};

} // namespace tavrin
