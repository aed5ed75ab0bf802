#include "doubles/builders.h"
#include "ui/layout_picture.h"
#include "ui/layouts_pane.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavrin {
namespace {

SavedLayout layoutOn(std::vector<SavedDisplay> displays, std::vector<SavedLayoutEntry> entries) {
    auto layout = testing::layout("Work", std::move(entries));
    if (!displays.empty())
        layout.savedDisplays = std::move(displays);
    return layout;
}

SavedDisplay at(Rect visibleFrame) {
    return {"d", visibleFrame, false};
}

SavedLayoutEntry at(std::string application, Rect frame) {
    return testing::entry(std::move(application), "title", frame);
}

/// The frame of that application's window in the picture.
Rect frameOf(const LayoutPicture& picture, const std::string& application) {
    for (const auto& window : picture.windows)
        if (window.label == application)
            return window.frame;
    return {};
}

// Displays count upwards from the bottom of the primary one, windows downwards from its top.
TEST(LayoutPicture, ShowsWindowsWhereTheUserSawThem) {
    struct Case {
        const char* situation;
        std::vector<SavedDisplay> displays;
        Rect window;
        std::vector<Rect> screensDrawn;
        Rect windowDrawn;
        std::size_t screen;
    };
    const Rect full{0, 0, 1920, 1080};
    for (const Case& c : {
             Case{"one display", {at(full)}, {100, 50, 800, 600}, {full}, {100, 50, 800, 600}, 0},
             Case{"a panel at the bottom",
                  {at({0, 40, 1920, 1040})},
                  {0, 0, 1920, 1040},
                  {{0, 0, 1920, 1040}},
                  {0, 0, 1920, 1040},
                  0},
             Case{"a panel at the top, a maximised window",
                  {at({0, 0, 1920, 1040})},
                  {0, 40, 1920, 1040},
                  {{0, 0, 1920, 1040}},
                  {0, 0, 1920, 1040},
                  0},
             Case{"a taller display at the right, upper edges in line",
                  {at(full), at({1920, -360, 2560, 1440})},
                  {1920, 1000, 1000, 440},
                  {{0, 0, 1920, 1080}, {1920, 0, 2560, 1440}},
                  {1920, 1000, 1000, 440},
                  1},
             Case{"a display above the primary one",
                  {at(full), at({0, 1080, 1920, 1200})},
                  {10, -1200, 500, 400},
                  {{0, 1200, 1920, 1080}, {0, 0, 1920, 1200}},
                  {10, 0, 500, 400},
                  1},
             Case{"a display below, the primary one listed last",
                  {at({0, -1200, 1920, 1200}), at(full)},
                  {10, 1080, 500, 400},
                  {{0, 1080, 1920, 1200}, {0, 0, 1920, 1080}},
                  {10, 1080, 500, 400},
                  0},
             Case{"a display at the left",
                  {at({-1280, 56, 1280, 1024}), at(full)},
                  {-1280, 0, 640, 1024},
                  {{0, 0, 1280, 1024}, {1280, 0, 1920, 1080}},
                  {0, 0, 640, 1024},
                  0},
         }) {
        const auto picture = makeLayoutPicture(layoutOn(c.displays, {at("Editor", c.window)}));
        ASSERT_EQ(picture.screens.size(), c.screensDrawn.size());
        for (std::size_t i = 0; i < picture.screens.size(); ++i)
            EXPECT_EQ(picture.screens[i].frame, c.screensDrawn[i]) << c.situation;
        ASSERT_EQ(picture.windows.size(), 1U) << c.situation;
        EXPECT_EQ(picture.windows[0].frame, c.windowDrawn) << c.situation;
        EXPECT_EQ(picture.windows[0].screen, c.screen) << c.situation;
    }
}

TEST(LayoutPicture, TakesAWindowThatHangsBelowTheScreenForNoPanel) {
    const auto picture = makeLayoutPicture(
        layoutOn({at({0, 0, 1920, 1080})}, {at("Low", {100, 900, 400, 300}), at("Top", {0, 0, 400, 300})}));
    EXPECT_EQ(frameOf(picture, "Top"), (Rect{0, 0, 400, 300}));
    EXPECT_EQ(picture.windows.back().visibleFrame.maxY() <= 1080, true);
}

TEST(LayoutPicture, PutsSmallWindowsInFrontAndFrontOnesInFrontOfTheirEquals) {
    const auto picture = makeLayoutPicture(
        layoutOn({at({0, 0, 1000, 1000})}, {at("front", {0, 0, 100, 100}), at("back", {50, 0, 100, 100}),
                                            at("large", {0, 0, 900, 900})}));
    std::string order;
    for (const auto& window : picture.windows)
        order += window.label + " ";
    EXPECT_EQ(order, "large back front ");
}

TEST(LayoutPicture, LeavesOutWhatCannotBeDrawn) {
    const double infinite = std::numeric_limits<double>::infinity();
    const auto picture =
        makeLayoutPicture(layoutOn({at({0, 0, 1000, 1000}), at({0, 0, 0, 1000}), at({1e12, 0, 1000, 1000})},
                                   {at("off screen", {2000, 0, 100, 100}), at("flat", {0, 0, 100, 0}),
                                    at("endless", {0, 0, infinite, 100}), at("fine", {950, 0, 100, 100})}));
    EXPECT_EQ(picture.screens.size(), 1U);
    EXPECT_EQ(picture.size, (Size{1000, 1000}));
    ASSERT_EQ(picture.windows.size(), 1U);
    EXPECT_EQ(picture.windows[0].visibleFrame, (Rect{950, 0, 50, 100}));

    const auto withoutDisplays = makeLayoutPicture(layoutOn({}, {at("fine", {-100, 50, 100, 100})}));
    EXPECT_EQ(withoutDisplays.size, (Size{100, 100}));
    EXPECT_EQ(frameOf(withoutDisplays, "fine"), (Rect{0, 0, 100, 100}));
    EXPECT_EQ(makeLayoutPicture(layoutOn({}, {})).size, Size{});
}

TEST(LayoutPicture, IsDescribedInWords) {
    const auto picture = makeLayoutPicture(
        layoutOn({at({0, 0, 1000, 1000}), at({1000, 0, 1000, 1000}), at({2000, 0, 1000, 1000})},
                 {at("Editor", {0, 0, 100, 100}), at("Editor", {0, 0, 200, 100}),
                  at("Browser", {300, 0, 100, 100}), at("Mail", {2000, 0, 100, 100})}));
    EXPECT_EQ(picture.description(),
              "Display 1: Browser, Editor (2 windows). Display 2: empty. Display 3: Mail.");
    EXPECT_EQ(makeLayoutPicture(layoutOn({}, {at("Mail", {0, 0, 100, 100})})).description(),
              "Windows: Mail.");
}

TEST(RelativeTime, SaysHowLongAgoWithinADay) {
    const auto now = Timestamp{} + std::chrono::hours(1000);
    for (const auto& [seconds, text] : {std::pair<int, std::optional<std::string>>{0, "just now"},
                                        {59, "just now"},
                                        {60, "1 minute ago"},
                                        {3599, "59 minutes ago"},
                                        {3600, "1 hour ago"},
                                        {86399, "23 hours ago"},
                                        {86400, std::nullopt},
                                        {-1, std::nullopt}})
        EXPECT_EQ(relativeTimeText(now - std::chrono::seconds(seconds), now), text) << seconds;
}

} // namespace
} // namespace tavrin
