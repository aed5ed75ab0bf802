#include "platform/x11/work_area.h"
#include "x11/pixel_rect_printer.h"

#include <gtest/gtest.h>

#include <vector>

namespace tavrin {

namespace {

using Values = std::vector<std::uint32_t>;

// Two screens side by side, a third one below the left one.
constexpr PixelRect left{0, 0, 1920, 1080};
constexpr PixelRect right{1920, 0, 1280, 1024};
constexpr PixelRect below{0, 1080, 1920, 1080};
constexpr PixelRect root{0, 0, 3200, 2160};

struct Case {
    const char* situation;
    Values strut;
    PixelRect dock;
    PixelRect leftArea = left;
    PixelRect rightArea = right;
    PixelRect belowArea = below;
};

TEST(WorkAreaTest, aDockTakesFromTheScreensWhereItLies) {
    const Case cases[] = {
        {"no dock", {0, 0, 0, 0}, {0, 0, 10, 10}},
        {.situation = "top of the left screen",
         .strut = {0, 0, 30, 0, 0, 0, 0, 0, 0, 1919, 0, 0},
         .dock = {0, 0, 1920, 30},
         .leftArea = {0, 30, 1920, 1050}},
        {.situation = "bottom of the right screen, which ends above the root's edge",
         .strut = {0, 0, 0, 2160 - 1024 + 40, 0, 0, 0, 0, 0, 0, 1920, 3199},
         .dock = {1920, 984, 1280, 40},
         .rightArea = {1920, 0, 1280, 984}},
        {.situation = "top of the lower screen: the strut passes over the whole upper one",
         .strut = {0, 0, 1110, 0, 0, 0, 0, 0, 0, 1919, 0, 0},
         .dock = {0, 1080, 1920, 30},
         .belowArea = {0, 1110, 1920, 1050}},
        {.situation = "right edge of the left screen, inside the root",
         .strut = {0, 3200 - 1920 + 64, 0, 0, 0, 0, 0, 1079, 0, 0, 0, 0},
         .dock = {1856, 0, 64, 1080},
         .leftArea = {0, 0, 1856, 1080}},
        {.situation = "a plain strut along the left edge",
         .strut = {50, 0, 0, 0},
         .dock = {0, 0, 50, 2160},
         .leftArea = {50, 0, 1870, 1080},
         .belowArea = {50, 1080, 1870, 1080}},
        {.situation = "one panel across two screens",
         .strut = {0, 0, 24, 0, 0, 0, 0, 0, 0, 3199, 0, 0},
         .dock = {0, 0, 3200, 24},
         .leftArea = {0, 24, 1920, 1056},
         .rightArea = {1920, 24, 1280, 1000}},
        {.situation = "a strut beside the screen's extent",
         .strut = {0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0},
         .dock = {0, 0, 1920, 30}},
        {.situation = "a panel across two screens that reserves only its left part",
         .strut = {0, 0, 24, 0, 0, 0, 0, 0, 0, 1919, 0, 0},
         .dock = {0, 0, 3200, 24},
         .leftArea = {0, 24, 1920, 1056}},
        {.situation = "a strut that would leave nothing",
         .strut = {0, 0, 1080, 0, 0, 0, 0, 0, 0, 1919, 0, 0},
         .dock = {0, 0, 1920, 30}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.situation);
        const auto reserved = strut(test.strut);
        ASSERT_TRUE(reserved);
        const Dock docks[] = {{*reserved, test.dock}};
        EXPECT_EQ(areaWithoutDocks(left, root, docks), test.leftArea);
        EXPECT_EQ(areaWithoutDocks(right, root, docks), test.rightArea);
        EXPECT_EQ(areaWithoutDocks(below, root, docks), test.belowArea);
    }
}

TEST(WorkAreaTest, docksOnDifferentEdgesAddUpAndOnTheSameEdgeDoNot) {
    const Dock docks[] = {{*strut(Values{0, 0, 30, 0}), {0, 0, 1920, 30}},
                          {*strut(Values{0, 0, 20, 0}), {0, 0, 1920, 20}},
                          {*strut(Values{64, 0, 0, 0}), {0, 0, 64, 1080}}};
    EXPECT_EQ(areaWithoutDocks(left, root, docks), (PixelRect{64, 30, 1856, 1050}));
}

TEST(WorkAreaTest, aStrutHasFourOrTwelvePossibleValues) {
    for (const auto& values : {Values{}, Values{1, 2, 3}, Values(11, 1), Values{0, 0, 0xFFFFFFFF, 0}})
        EXPECT_EQ(strut(values), std::nullopt);
}

TEST(WorkAreaTest, theWindowManagersAreaIsTheOneThatCoversMostOfTheScreen) {
    const Values areas = {1920, 0, 1280, 1000, 0, 27, 1920, 1053, 0xFFFFFFFF, 5, 0xFFFFFFFF, 7, 1, 2};
    EXPECT_EQ(workAreaOn(left, areas), (PixelRect{0, 27, 1920, 1053}));
    EXPECT_EQ(workAreaOn(right, areas), (PixelRect{1920, 0, 1280, 1000}));
    EXPECT_EQ(workAreaOn(below, areas), std::nullopt);
    EXPECT_EQ(workAreaOn(left, Values{0, 0, 3200, 2160}), left);
}

} // namespace
} // namespace tavrin
