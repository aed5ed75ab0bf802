#include "doubles/fake_desktop.h"
#include "doubles/fake_time.h"
#include "doubles/fake_window_system.h"
#include "platform/windows/window_ports.h"
#include "platform/windows/window_system_elements.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

/// The primary screen stands to the right of and below a smaller one.
class WindowSystemTest : public ::testing::Test {
protected:
    testing::FakeWindowSystem system;
    testing::FakeCatalog catalog;
    testing::FakeTime time;
    ListedWindows windows{system, catalog, time};
    WindowSystemScreens screens{windows};
    WindowSystemWindowList list{windows};
    WindowSystemApplications applications{windows};
    WindowSystemElements elements{windows};

    WindowSystemTest() {
        const DisplayHardware hardware{.vendorNumber = 1, .modelNumber = 2, .serialNumber = 3};
        system.screenList = {
            {.frame = {0, 0, 800, 600}, .workArea = {0, 30, 800, 570}, .hardware = {hardware}},
            {.frame = {800, 100, 1920, 1080},
             .workArea = {800, 100, 1920, 1040},
             .scale = 2,
             .isPrimary = true,
             .hardware = {}}};
        add(1, 70, {900, 150, 400, 300}, "first");
        add(2, 70, {100, 50, 300, 200}, "second");
        system.listing.windows[1].isOnScreen = false;
        system.listing.activeWindow = 2;
    }

    void add(WindowID id, ProcessID pid, const Rect& frame, std::string title) {
        system.listing.windows.push_back({.id = id,
                                          .application = {.pid = pid, .className = "Editor"},
                                          .title = std::move(title),
                                          .frame = frame});
    }

    AXElement element(WindowID id, ProcessID pid = 70) { return *elements.listedWindowElement(pid, id); }

    Rect frame(WindowID id) {
        const auto position = readAttribute<Point>(elements, element(id), AXAttribute::position);
        const auto size = readAttribute<Size>(elements, element(id), AXAttribute::size);
        return position && size ? Rect{position->x, position->y, size->width, size->height} : Rect{};
    }
};

TEST_F(WindowSystemTest, BothSpacesBeginAtThePrimaryScreen) {
    const auto found = screens.screens();
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].frame, (DisplayFrame{-800, 580, 800, 600}));
    EXPECT_EQ(found[0].visibleFrame, (DisplayFrame{-800, 580, 800, 570}));
    EXPECT_EQ(found[0].hardware, system.screenList[0].hardware);
    EXPECT_EQ(found[1], (Screen{{0, 0, 1920, 1080}, {0, 40, 1920, 1040}, 2, {}}));
    const auto shown = list.onScreenWindows();
    ASSERT_TRUE(shown && shown->size() == 1u) << "hidden windows are not on screen";
    EXPECT_EQ(shown->front().bounds->x, 100);
    EXPECT_EQ(shown->front().bounds->y, 50);
    EXPECT_EQ(frame(2), (Rect{-700, -50, 300, 200})) << "but they have elements";
    EXPECT_EQ(elements.setFrames(std::vector{AXFrame{element(2), {10, 20, 300, 200}}}),
              std::vector{AXFrameResult{}});
    EXPECT_EQ(system.placed, (std::vector{WindowPlacement{2, {810, 120, 300, 200}}}));
}

TEST_F(WindowSystemTest, OneListingAnswersUntilTheNextTurnOrAnUnknownOutcome) {
    const auto ask = [&] {
        list.onScreenWindows();
        applications.runningApplications();
        screens.screens();
        return frame(1);
    };
    ask();
    ask();
    EXPECT_EQ(system.listings, 1);
    EXPECT_EQ(system.screenQuestions, 1);
    elements.setFrames(std::vector{AXFrame{element(1), {5, 6, 700, 500}}});
    EXPECT_EQ(ask(), (Rect{5, 6, 700, 500})) << "the answer is entered";
    EXPECT_EQ(system.listings, 1);
    system.outcomes = {PlacementOutcome::adjusted};
    system.listing.windows[0].frame = {800, 100, 710, 510};
    elements.setFrames(std::vector{AXFrame{element(1), {0, 0, 700, 500}}});
    EXPECT_EQ(ask(), (Rect{0, 0, 710, 510})) << "the client took another size";
    EXPECT_EQ(system.listings, 2);
    time.pass(0);
    ask();
    EXPECT_EQ(system.listings, 3);
    system.signals[WindowSystemEvent::screensChanged].emit();
    ask();
    EXPECT_EQ(system.listings, 4);
}

TEST_F(WindowSystemTest, EveryOutcomeHasItsResult) {
    const auto both = [](AXError error) { return AXFrameResult{.position = error, .size = error}; };
    const std::pair<PlacementOutcome, AXFrameResult> cases[] = {
        {PlacementOutcome::done, {}},
        {PlacementOutcome::adjusted, {}},
        {PlacementOutcome::pending, {}},
        {PlacementOutcome::tiled, {.isTiled = true}},
        {PlacementOutcome::timedOut, both(AXError::cannotComplete)},
        {PlacementOutcome::gone, both(AXError::invalidUIElement)},
        {PlacementOutcome::refused, both(AXError::illegalArgument)},
    };
    std::vector<AXFrame> frames;
    std::vector<AXFrameResult> expected;
    WindowID id = 10;
    for (const auto& [outcome, result] : cases) {
        // A closed window's number may come back as that of another process's window.
        const ProcessID owner = id % 2 == 0 ? 70 : 71;
        add(id, 70, {0, 0, 100, 100}, "");
        frames.push_back({element(id, owner), {0, 0, 200, 200}});
        expected.push_back(owner == 70 ? result : both(AXError::invalidUIElement));
        if (owner == 70)
            system.outcomes.push_back(outcome);
        ++id;
    }
    EXPECT_EQ(elements.setFrames(frames), expected);
    system.obstacleNow = WindowSystemObstacle::notAnswering;
    time.pass(0);
    EXPECT_EQ(elements.setFrames(frames).front(), both(AXError::cannotComplete));
    system.obstacleNow = WindowSystemObstacle::noWindowManager;
    time.pass(0);
    EXPECT_EQ(elements.setFrames(frames).front(), both(AXError::apiDisabled));
    EXPECT_EQ(list.onScreenWindows(), std::nullopt);
}

TEST_F(WindowSystemTest, ApplicationsAreThoseWithWindows) {
    add(3, 9, {0, 0, 100, 100}, "other");
    catalog.identities[system.listing.windows[0].application] = {"editor.desktop", "Editor", {}};
    const auto all = applications.runningApplications();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].processIdentifier, 9);
    EXPECT_EQ(all[1], (RunningApplication{70, "editor.desktop", "Editor", false})) << "once for two windows";
    EXPECT_EQ(applications.applicationsWithBundleIdentifier("editor.desktop").size(), 1u);
    EXPECT_EQ(applications.applicationWithProcessIdentifier(8), std::nullopt);
    EXPECT_EQ(elements.attribute(elements.applicationElement(8), AXAttribute::windows),
              std::unexpected(AXError::invalidUIElement));
}

} // namespace
} // namespace tavrin
