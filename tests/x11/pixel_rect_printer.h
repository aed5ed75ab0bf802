#pragma once

#include "platform/x11/window_frame.h"

#include <ostream>

namespace tavrin {

inline void PrintTo(const PixelRect& rect, std::ostream* out) {
    *out << rect.x << ',' << rect.y << ' ' << rect.width << 'x' << rect.height;
}

} // namespace tavrin
