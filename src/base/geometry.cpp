#include "base/geometry.h"

#include <cmath>

namespace tavrin {

namespace {

// std::min and std::max hide a NaN or pass it on, depending on which side it stands.
bool holdsNaN(const Rect& rect) {
    return std::isnan(rect.x) || std::isnan(rect.y) || std::isnan(rect.width) || std::isnan(rect.height);
}

} // namespace

double overlapArea(const Rect& a, const Rect& b) {
    if (holdsNaN(a) || holdsNaN(b))
        return 0;
    const double width = std::min(a.maxX(), b.maxX()) - std::max(a.minX(), b.minX());
    const double height = std::min(a.maxY(), b.maxY()) - std::max(a.minY(), b.minY());
    return width > 0 && height > 0 ? width * height : 0;
}

Rect unionOf(const Rect& a, const Rect& b) {
    const double x = std::min(a.minX(), b.minX());
    const double y = std::min(a.minY(), b.minY());
    return {x, y, std::max(a.maxX(), b.maxX()) - x, std::max(a.maxY(), b.maxY()) - y};
}

double frameDistance(const Rect& a, const Rect& b) {
    return std::abs(a.x - b.x) + std::abs(a.y - b.y) + std::abs(a.width - b.width) +
           std::abs(a.height - b.height);
}

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.x) && std::isfinite(rect.y) && std::isfinite(rect.width) &&
           std::isfinite(rect.height);
}

bool isSaneFrame(const Rect& rect, double limit) {
    return isFinite(rect) && rect.width > 0 && rect.height > 0 && std::abs(rect.x) <= limit &&
           std::abs(rect.y) <= limit && rect.width <= limit && rect.height <= limit;
}

} // namespace tavrin
