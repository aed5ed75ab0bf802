#include "records/displays.h"

#include <fmt/format.h>

namespace tavrin {

std::string DisplaySnapshot::arrangementKey() const {
    return fmt::format("{}:{:.3f}:{:.3f}:{:.3f}:{:.3f}:{}:{}", isInternal ? "internal" : "external",
                       normalizedFrame.x, normalizedFrame.y, normalizedFrame.width, normalizedFrame.height,
                       scaleBucket, pixelSizeBucket);
}

std::string DisplaySnapshot::id() const {
    return stableID.value_or(arrangementKey());
}

} // namespace tavrin
