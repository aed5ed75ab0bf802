#pragma once

#include "placement/display_remapper.h"
#include "records/layouts.h"

namespace tavrin {

/// The smallest and the largest size, in points, that a window is given.
struct SizeClamps {
    Size minSize;
    Size maxSize;

    bool operator==(const SizeClamps&) const = default;

    static constexpr SizeClamps standard() { return {{200, 150}, {6000, 4000}}; }
};

/// Turns a saved entry back into a frame on the current displays.
struct WindowPlacementTranslator {
    SizeClamps clamps = SizeClamps::standard();

    /// Where the entry's window belongs now, in the space of the entry's saved frame: exactly there on a
    /// display that is as it was when the layout was saved. Elsewhere the frame lies inside its display: the
    /// display's size wins over the minimum, the maximum size over both, and the right and bottom edges over
    /// the left and top. An entry without fractions, or on a display without an area, keeps its saved frame
    /// as it is.
    Rect targetFrame(const SavedLayoutEntry& entry, const DisplayRemapping& remapping) const;
};

} // namespace tavrin
