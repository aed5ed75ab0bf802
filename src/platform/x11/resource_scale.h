#pragma once

#include <string_view>

namespace tavrin {

/// The scale that the desktop's resource texts (lines of "name: value") ask for: Xft.dpi in relation to the
/// usual 96. 1 when there is no such line or its value is no possible resolution.
double resourceScale(std::string_view resources);

} // namespace tavrin
