#pragma once

#include "base/record_fields.h"

#include <algorithm>

namespace tavrin {

/// A position in points. Which corner is the origin belongs to the value that holds the point.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

/// An extent in points.
struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// A rectangle of doubles. The coordinate space (and whether the unit is a point or a fraction of a
/// display) belongs to the value that holds the rectangle; nothing here converts between spaces.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect&) const = default;

    double minX() const { return std::min(x, x + width); }
    double minY() const { return std::min(y, y + height); }
    double maxX() const { return std::max(x, x + width); }
    double maxY() const { return std::max(y, y + height); }

    static constexpr auto fields() {
        return std::tuple{field("x", &Rect::x), field("y", &Rect::y), field("width", &Rect::width),
                          field("height", &Rect::height)};
    }
};

/// The area that both rectangles cover; 0 when they do not overlap, only touch, or hold a NaN.
double overlapArea(const Rect& a, const Rect& b);

/// The smallest rectangle that covers both.
Rect unionOf(const Rect& a, const Rect& b);

/// |dx| + |dy| + |dwidth| + |dheight|, the measure by which candidate windows are ranked.
double frameDistance(const Rect& a, const Rect& b);

/// x, y, width and height are all finite numbers.
bool isFinite(const Rect& rect);

/// A frame that may be handed to a window: finite, with a positive size, and with no coordinate or size
/// beyond `limit` points.
bool isSaneFrame(const Rect& rect, double limit);

} // namespace tavrin
