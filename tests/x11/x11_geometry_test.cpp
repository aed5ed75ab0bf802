#include "platform/x11/work_area.h"
#include "platform/x11/x11_screens.h"
#include "platform/x11/x11_window.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <xcb/xcb.h>

#include <limits>
#include <vector>

namespace tavrin {

static void PrintTo(const PixelRect& rect, std::ostream* out) {
    *out << rect.x << ',' << rect.y << ' ' << rect.width << 'x' << rect.height;
}

namespace {

TEST(WindowFrameTest, decorationsBelongToAWindowAndShadowsDoNot) {
    const WindowBorders titled{.decorations = {.left = 1, .right = 2, .top = 20, .bottom = 5}};
    EXPECT_EQ(visibleRect({101, 170, 500, 400}, titled), (PixelRect{100, 150, 503, 425}));
    const WindowBorders shadowed{.shadows = {.left = 26, .right = 26, .top = 23, .bottom = 29}};
    EXPECT_EQ(visibleRect({74, 127, 552, 452}, shadowed), (PixelRect{100, 150, 500, 400}));
}

RC_GTEST_PROP(WindowFrameTest, whatIsReadIsWhatIsWritten, ()) {
    const auto inset = [] { return *rc::gen::inRange(0, 100); };
    const auto insets = [&] { return FrameInsets{inset(), inset(), inset(), inset()}; };
    const WindowBorders borders{insets(), insets()};
    const PixelRect client{*rc::gen::inRange(-2000, 9000), *rc::gen::inRange(-2000, 9000),
                           *rc::gen::inRange(1, 4000), *rc::gen::inRange(1, 4000)};
    RC_ASSERT(clientRect(visibleRect(client, borders), borders) == client);
}

TEST(WindowFrameTest, aWindowKeepsAtLeastOnePixel) {
    const WindowBorders borders{.decorations = {.left = 5, .right = 5, .top = 20, .bottom = 5}};
    EXPECT_EQ(clientRect({0, 0, 8, 10}, borders), (PixelRect{5, 20, 1, 1}));
}

TEST(WindowFrameTest, shadowsThatLeaveNothingOfTheWindowDoNotCount) {
    X11Window window{.client = {100, 100, 400, 300}, .shadows = {200, 199, 100, 199}};
    EXPECT_EQ(visibleRect(window.client, window.borders()), (PixelRect{300, 200, 1, 1}));
    for (const FrameInsets& shadows : {FrameInsets{200, 200, 0, 0}, FrameInsets{0, 0, 300, 0}}) {
        window.shadows = shadows;
        EXPECT_EQ(visibleRect(window.client, window.borders()), window.client);
    }
}

TEST(WindowFrameTest, onlyFourPossibleValuesAreAFrame) {
    const auto read = [](std::initializer_list<std::uint32_t> values) {
        return frameInsets({values.begin(), values.size()});
    };
    EXPECT_EQ(read({1, 2, 3, 4}), (FrameInsets{.left = 1, .right = 2, .top = 3, .bottom = 4}));
    EXPECT_EQ(read({}), FrameInsets{});
    EXPECT_EQ(read({1, 2, 3}), FrameInsets{});
    EXPECT_EQ(read({1, 2, 3, 4, 5}), FrameInsets{});
    EXPECT_EQ(read({1, 2, 3, 0xFFFFFFFF}), FrameInsets{});
}

/// The position at which a window manager following the rules puts the client, asked for `request`.
PixelRect placed(const PixelRect& request, const FrameInsets& frame, std::uint32_t gravity) {
    const auto width = frame.left + request.width + frame.right;
    const auto height = frame.top + request.height + frame.bottom;
    const auto column = gravity == XCB_GRAVITY_STATIC ? 0 : (gravity - 1) % 3;
    const auto row = gravity == XCB_GRAVITY_STATIC ? 0 : (gravity - 1) / 3;
    // The frame's reference point (corner, middle of an edge, centre) takes the place of the client's.
    const auto x = request.x + (static_cast<int>(column) * (request.width - width)) / 2;
    const auto y = request.y + (static_cast<int>(row) * (request.height - height)) / 2;
    if (gravity == XCB_GRAVITY_STATIC)
        return request;
    return {x + frame.left, y + frame.top, request.width, request.height};
}

TEST(WindowFrameTest, aPlainRequestFollowsTheGravityOfTheWindow) {
    const FrameInsets frame{.left = 4, .right = 6, .top = 24, .bottom = 8};
    const PixelRect wanted{300, 200, 640, 480};
    for (std::uint32_t gravity = XCB_GRAVITY_NORTH_WEST; gravity <= XCB_GRAVITY_STATIC; ++gravity)
        EXPECT_EQ(placed(configureRequestRect(wanted, frame, gravity), frame, gravity), wanted) << gravity;
}

TEST(WindowFrameTest, pointsOutsideTheProtocolAreNoPixels) {
    EXPECT_EQ(pixels(10.5), 11);
    EXPECT_EQ(pixels(-10.4), -10);
    EXPECT_EQ(pixels(32767), 32767);
    for (const double points :
         {32768.0, -1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(pixels(points), std::nullopt) << points;
}

using Values = std::vector<std::uint32_t>;

// Two screens side by side, a third one below the left one.
constexpr PixelRect left{0, 0, 1920, 1080};
constexpr PixelRect right{1920, 0, 1280, 1024};
constexpr PixelRect below{0, 1080, 1920, 1080};
constexpr PixelRect root{0, 0, 3200, 2160};

enum Edge : std::size_t { atLeft, atRight, atTop, atBottom };

/// A strut at one edge of the root, and the part of the edge that it takes.
Values edge(Edge edge, std::uint32_t size, std::uint32_t first, std::uint32_t last) {
    Values values(12);
    values[edge] = size;
    values[4 + 2 * edge] = first;
    values[5 + 2 * edge] = last;
    return values;
}

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
        {"left screen", edge(atTop, 30, 0, 1919), {0, 0, 1920, 30}, {0, 30, 1920, 1050}},
        {"right screen", edge(atBottom, 1176, 1920, 3199), {1920, 984, 1280, 40}, left, {1920, 0, 1280, 984}},
        {"through the upper screen",
         edge(atTop, 1110, 0, 1919),
         {0, 1080, 1920, 30},
         left,
         right,
         {0, 1110, 1920, 1050}},
        {"inside the root", edge(atRight, 1344, 0, 1079), {1856, 0, 64, 1080}, {0, 0, 1856, 1080}},
        {"plain", {50, 0, 0, 0}, {0, 0, 50, 2160}, {50, 0, 1870, 1080}, right, {50, 1080, 1870, 1080}},
        {"across two screens",
         edge(atTop, 24, 0, 3199),
         {0, 0, 3200, 24},
         {0, 24, 1920, 1056},
         {1920, 24, 1280, 1000}},
        {"beside the screen", edge(atTop, 30, 1920, 3199), {0, 0, 1920, 30}},
        {"only its left part", edge(atTop, 24, 0, 1919), {0, 0, 3200, 24}, {0, 24, 1920, 1056}},
        {"would leave nothing", edge(atTop, 1080, 0, 1919), {0, 0, 1920, 30}},
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
