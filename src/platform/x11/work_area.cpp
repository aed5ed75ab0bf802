#include "platform/x11/work_area.h"

#include <algorithm>
#include <limits>

namespace tavrin {
namespace {

constexpr std::uint32_t pixelLimit = 65535;

bool isEmpty(const PixelRect& rect) {
    return rect.width <= 0 || rect.height <= 0;
}

std::int64_t surface(const PixelRect& rect) {
    return std::int64_t{rect.width} * rect.height;
}

bool overlaps(const Strut::Strip& strip, std::int32_t from, std::int32_t to) {
    return strip.thickness > 0 && strip.start < to && strip.end >= from;
}

} // namespace

bool Strut::isEmpty() const {
    return left.thickness == 0 && right.thickness == 0 && top.thickness == 0 && bottom.thickness == 0;
}

std::optional<Strut> strut(std::span<const std::uint32_t> values) {
    if ((values.size() != 4 && values.size() != 12) ||
        std::ranges::any_of(values.first(4), [](auto value) { return value > pixelLimit; }))
        return std::nullopt;
    const auto strip = [&](std::size_t side) -> Strut::Strip {
        if (values.size() == 4)
            return {values[side], 0, std::numeric_limits<std::int32_t>::max()};
        return {values[side], static_cast<std::int32_t>(values[4 + 2 * side]),
                static_cast<std::int32_t>(values[5 + 2 * side])};
    };
    return Strut{.left = strip(0), .right = strip(1), .top = strip(2), .bottom = strip(3)};
}

PixelRect areaWithoutDocks(const PixelRect& monitor, const PixelRect& root, std::span<const Dock> docks) {
    auto free = monitor;
    const auto takeLeft = [&](std::int64_t edge) {
        if (edge > free.x && edge < free.right()) {
            free.width = static_cast<std::int32_t>(free.right() - edge);
            free.x = static_cast<std::int32_t>(edge);
        }
    };
    const auto takeTop = [&](std::int64_t edge) {
        if (edge > free.y && edge < free.bottom()) {
            free.height = static_cast<std::int32_t>(free.bottom() - edge);
            free.y = static_cast<std::int32_t>(edge);
        }
    };
    const auto takeRight = [&](std::int64_t edge) {
        if (edge > free.x && edge < free.right())
            free.width = static_cast<std::int32_t>(edge - free.x);
    };
    const auto takeBottom = [&](std::int64_t edge) {
        if (edge > free.y && edge < free.bottom())
            free.height = static_cast<std::int32_t>(edge - free.y);
    };
    for (const auto& dock : docks) {
        if (isEmpty(intersection(dock.area, monitor)))
            continue;
        if (overlaps(dock.strut.left, monitor.y, monitor.bottom()))
            takeLeft(root.x + dock.strut.left.thickness);
        if (overlaps(dock.strut.right, monitor.y, monitor.bottom()))
            takeRight(root.right() - dock.strut.right.thickness);
        if (overlaps(dock.strut.top, monitor.x, monitor.right()))
            takeTop(root.y + dock.strut.top.thickness);
        if (overlaps(dock.strut.bottom, monitor.x, monitor.right()))
            takeBottom(root.bottom() - dock.strut.bottom.thickness);
    }
    return free;
}

std::optional<PixelRect> workAreaOn(const PixelRect& monitor, std::span<const std::uint32_t> areas) {
    PixelRect best;
    for (std::size_t i = 0; i + 4 <= areas.size(); i += 4) {
        const auto values = areas.subspan(i, 4);
        if (values[2] > pixelLimit || values[3] > pixelLimit)
            continue;
        const auto coordinate = [](std::uint32_t value) {
            return std::clamp(static_cast<std::int32_t>(value), -65536, 65536);
        };
        const PixelRect area{coordinate(values[0]), coordinate(values[1]),
                             static_cast<std::int32_t>(values[2]), static_cast<std::int32_t>(values[3])};
        const auto common = intersection(area, monitor);
        if (surface(common) > surface(best))
            best = common;
    }
    return isEmpty(best) ? std::nullopt : std::optional(best);
}

} // namespace tavrin
