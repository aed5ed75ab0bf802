#include "platform/x11/x11_screens.h"

#include <gtest/gtest.h>

#include <string>

namespace tavrin {
namespace {

TEST(ResourceScaleTest, theResolutionForTextsGivesTheScale) {
    for (const auto& [resources, scale] : {std::pair{"", 1.0},
                                           {"Xft.dpi:\t192\n", 2},
                                           {"Xft.antialias:\t1\nXft.dpi: 144\r\nXcursor.size:\t24\n", 1.5},
                                           {"  Xft.dpi  :  96  ", 1},
                                           {"Xft.dpi: 120\nXft.dpi: 168", 1.75},
                                           {"*Xft.dpi.x: 192\nXft.dpi2: 192\nXft.dpi 192\n", 1}})
        EXPECT_EQ(resourceScale(resources), scale) << resources;
    for (const std::string value : {"", "large", "192dpi", "0", "-192", "inf", "nan", "1e99"})
        EXPECT_EQ(resourceScale("Xft.dpi: " + value + "\n"), 1) << value;
}

} // namespace
} // namespace tavrin
