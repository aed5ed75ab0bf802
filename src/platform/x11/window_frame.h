#pragma once

#include "base/geometry.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tavrin {

/// A rectangle in pixels of the root window: top-left origin, y down.
struct PixelRect {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const PixelRect&) const = default;

    std::int32_t right() const { return x + width; }
    std::int32_t bottom() const { return y + height; }
};

/// The part that both rectangles cover; of no size when there is none.
PixelRect intersection(const PixelRect& a, const PixelRect& b);

/// How much of a frame lies on each side of a window.
struct FrameInsets {
    std::int32_t left = 0;
    std::int32_t right = 0;
    std::int32_t top = 0;
    std::int32_t bottom = 0;

    bool operator==(const FrameInsets&) const = default;
};

/// The four values of a frame property (left, right, top, bottom). Anything else than four values of a
/// possible size means no frame.
FrameInsets frameInsets(std::span<const std::uint32_t> values);

/// What surrounds the contents of a window.
struct WindowBorders {
    FrameInsets decorations; ///< drawn around the window by the window manager
    FrameInsets shadows;     ///< invisible margin inside the window, drawn by the client

    bool operator==(const WindowBorders&) const = default;
};

/// What the user sees of a window that occupies `client`. The inverse of `clientRect`.
PixelRect visibleRect(const PixelRect& client, const WindowBorders& borders);

/// Where a window must be so that the user sees it at `visible`; at least one pixel in size.
PixelRect clientRect(const PixelRect& visible, const WindowBorders& borders);

/// The position to ask for in a plain configure request so that the window manager, which reads it by the
/// window's own gravity (an X bit gravity number), puts the window at `client`.
PixelRect configureRequestRect(const PixelRect& client, const FrameInsets& decorations,
                               std::uint32_t gravity);

/// In points; a point is a pixel here.
Rect desktopSpaceRect(const PixelRect& rect);

/// A coordinate in points as a whole number of pixels; absent when no window can have it.
std::optional<std::int32_t> pixels(double points);

} // namespace tavrin
