#include "platform/x11/x11_window.h"
#include "x11/pixel_rect_printer.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <xcb/xcb.h>

#include <limits>

namespace tavrin {

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

} // namespace
} // namespace tavrin
