#pragma once

#include "records/displays.h"

#include <cstdint>
#include <vector>

namespace tavrin {

/// What is known of the hardware behind a screen.
struct DisplayHardware {
    std::uint32_t vendorNumber = 0; ///< 0 when unknown
    std::uint32_t modelNumber = 0;
    std::uint32_t serialNumber = 0; ///< 0 when the display reports none
    bool isBuiltin = false;
    std::uint32_t pixelsWide = 0; ///< of the whole screen where several outputs show it
    std::uint32_t pixelsHigh = 0;

    bool operator==(const DisplayHardware&) const = default;
};

/// A screen of the desktop.
struct Screen {
    DisplayFrame frame;        ///< points, bottom-left origin at the primary screen
    DisplayFrame visibleFrame; ///< the part of `frame` that panels and docks leave free
    double backingScaleFactor = 1;
    std::vector<DisplayHardware> hardware; ///< of every output that shows this area; empty without an output

    bool operator==(const Screen&) const = default;
};

/// The screens of the desktop.
class ScreenList {
public:
    virtual ~ScreenList() = default;

    /// In the platform's order; empty when there is none or the platform does not answer.
    virtual std::vector<Screen> screens() = 0;
};

} // namespace tavrin
