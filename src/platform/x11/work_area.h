#pragma once

#include "platform/x11/window_frame.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tavrin {

/// The strips a panel reserves at the edges of the root window, each with its extent along that edge
/// (both ends included).
struct Strut {
    struct Strip {
        std::int64_t thickness = 0;
        std::int64_t start = 0;
        std::int64_t end = 0;
        bool operator==(const Strip&) const = default;
    };
    Strip left, right, top, bottom;

    bool operator==(const Strut&) const = default;
    bool isEmpty() const;
};

/// From the twelve values of a partial strut, or the four of a plain one, which extends along the whole
/// edge. Other lengths and values that cannot be pixels are absent.
std::optional<Strut> strut(std::span<const std::uint32_t> values);

/// A panel: what it reserves and where it lies.
struct Dock {
    Strut strut;
    PixelRect area; ///< on the root window
};

/// What the docks leave free of a monitor. A strut is measured from the root's edge, so it may pass over
/// other monitors; it only counts on those where its dock lies. A strut that would leave nothing does not
/// count.
PixelRect areaWithoutDocks(const PixelRect& monitor, const PixelRect& root, std::span<const Dock> docks);

/// The work area of a monitor among those the window manager gives per monitor (x, y, width, height each);
/// absent when none lies on the monitor.
std::optional<PixelRect> workAreaOn(const PixelRect& monitor, std::span<const std::uint32_t> areas);

} // namespace tavrin
