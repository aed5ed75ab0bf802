#pragma once

#include "ports/screen_list.h"

namespace tavrin {

/// No screens. A real one lists every screen with its frame and the hardware behind it, in the order of the
/// platform. Frames have their origin at the bottom left of the primary screen and grow upwards; two equal
/// displays must be told apart the same way tomorrow.
class UnsupportedScreenList final : public ScreenList {
public:
    std::vector<Screen> screens() override { return {}; }
};

} // namespace tavrin
