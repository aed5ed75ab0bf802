#include "platform/x11/window_frame.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cmath>

namespace tavrin {
namespace {

/// Coordinates in the protocol have 16 bits.
constexpr double coordinateLimit = 32767;

/// No real frame or shadow is thicker.
constexpr std::uint32_t insetLimit = 1024;

} // namespace

PixelRect intersection(const PixelRect& a, const PixelRect& b) {
    const auto x = std::max(a.x, b.x);
    const auto y = std::max(a.y, b.y);
    return {x, y, std::max(0, std::min(a.right(), b.right()) - x),
            std::max(0, std::min(a.bottom(), b.bottom()) - y)};
}

FrameInsets frameInsets(std::span<const std::uint32_t> values) {
    if (values.size() != 4 || std::ranges::any_of(values, [](auto value) { return value > insetLimit; }))
        return {};
    const auto at = [&](std::size_t i) { return static_cast<std::int32_t>(values[i]); };
    return {at(0), at(1), at(2), at(3)};
}

PixelRect visibleRect(const PixelRect& client, const WindowBorders& borders) {
    const auto& [outer, inner] = borders;
    return {client.x - outer.left + inner.left, client.y - outer.top + inner.top,
            client.width + outer.left + outer.right - inner.left - inner.right,
            client.height + outer.top + outer.bottom - inner.top - inner.bottom};
}

PixelRect clientRect(const PixelRect& visible, const WindowBorders& borders) {
    const auto& [outer, inner] = borders;
    return {visible.x + outer.left - inner.left, visible.y + outer.top - inner.top,
            std::max(1, visible.width - outer.left - outer.right + inner.left + inner.right),
            std::max(1, visible.height - outer.top - outer.bottom + inner.top + inner.bottom)};
}

PixelRect configureRequestRect(const PixelRect& client, const FrameInsets& decorations,
                               std::uint32_t gravity) {
    // The reference point of the framed window takes the place that the same point of the bare window
    // would have at the requested position.
    PixelRect request = client;
    switch (gravity) {
    case XCB_GRAVITY_STATIC:
        return request;
    case XCB_GRAVITY_NORTH:
    case XCB_GRAVITY_CENTER:
    case XCB_GRAVITY_SOUTH:
        request.x += (decorations.right - decorations.left) / 2;
        break;
    case XCB_GRAVITY_NORTH_EAST:
    case XCB_GRAVITY_EAST:
    case XCB_GRAVITY_SOUTH_EAST:
        request.x += decorations.right;
        break;
    default:
        request.x -= decorations.left;
    }
    switch (gravity) {
    case XCB_GRAVITY_WEST:
    case XCB_GRAVITY_CENTER:
    case XCB_GRAVITY_EAST:
        request.y += (decorations.bottom - decorations.top) / 2;
        break;
    case XCB_GRAVITY_SOUTH_WEST:
    case XCB_GRAVITY_SOUTH:
    case XCB_GRAVITY_SOUTH_EAST:
        request.y += decorations.bottom;
        break;
    default:
        request.y -= decorations.top;
    }
    return request;
}

Rect desktopSpaceRect(const PixelRect& rect) {
    return {static_cast<double>(rect.x), static_cast<double>(rect.y), static_cast<double>(rect.width),
            static_cast<double>(rect.height)};
}

std::optional<std::int32_t> pixels(double points) {
    if (!std::isfinite(points) || std::abs(points) > coordinateLimit)
        return std::nullopt;
    return static_cast<std::int32_t>(std::lround(points));
}

} // namespace tavrin
