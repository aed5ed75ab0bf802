#pragma once

#include "base/geometry.h"

#include <cstddef>
#include <limits>
#include <optional>

namespace tavrin {

/// The candidate whose frame is nearest to a given one.
struct NearestFrame {
    std::size_t position = 0; ///< in the list of candidates
    double distance = 0;      ///< by `frameDistance`, in points
    bool isClear = false;     ///< the second nearest is at least 24 points farther, or there is none
};

/// Of equally near candidates the earlier one; absent when there is no candidate. `frameOf` gives a
/// candidate's frame in the space of `frame`.
template <class Candidates, class FrameOf>
std::optional<NearestFrame> nearestFrame(const Candidates& candidates, const Rect& frame, FrameOf frameOf) {
    constexpr double clearMargin = 24.0;
    std::optional<NearestFrame> nearest;
    double second = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const double distance = frameDistance(frameOf(candidates[i]), frame);
        if (!nearest || distance < nearest->distance) {
            if (nearest)
                second = nearest->distance;
            nearest = NearestFrame{i, distance};
        } else if (distance < second) {
            second = distance;
        }
    }
    if (nearest)
        nearest->isClear = second - nearest->distance >= clearMargin;
    return nearest;
}

} // namespace tavrin
