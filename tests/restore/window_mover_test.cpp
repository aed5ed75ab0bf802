#include "doubles/builders.h"
#include "doubles/fake_desktop.h"
#include "restore/running_application_resolver.h"
#include "restore/window_mover.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr ProcessID pid = 123;
const Rect live{100, 100, 400, 300};
const Rect target{0, 0, 800, 600};

/// The live frame, shifted right: at frame distance `by`.
Rect shifted(double by) {
    return {live.x + by, live.y, live.width, live.height};
}

class WindowMoverTest : public ::testing::Test {
protected:
    testing::FakeElements elements;
    WindowMover mover{elements};
    SavedLayoutEntry saved = testing::entry("app", "", live);
    std::vector<AXElement> windows;

    void add(Rect frame, std::string title = "", std::optional<std::string> subrole = "AXStandardWindow") {
        windows.push_back(elements.addWindow(pid, frame, std::move(title), "AXWindow", std::move(subrole)));
    }

    WindowMoveOutcome move(const Rect& to = target, std::string liveTitle = "") {
        return mover.move(pid, saved, testing::window(1, "app", std::move(liveTitle), live), to);
    }

    /// The number of the window that was moved, or the failure.
    std::string moved() {
        elements.sets.clear();
        const auto outcome = move();
        if (const auto* failed = std::get_if<WindowMoveFailed>(&outcome))
            return failed->message;
        for (std::size_t i = 0; i < windows.size(); ++i)
            if (windows[i] == elements.sets.at(0).first)
                return std::to_string(i);
        return "?";
    }

    std::string failure(const Rect& to = target) {
        const auto outcome = move(to);
        const auto* failed = std::get_if<WindowMoveFailed>(&outcome);
        return failed ? failed->message : "moved";
    }
};

TEST_F(WindowMoverTest, SetsPositionThenSizeOnce) {
    add(live);
    EXPECT_EQ(move(), WindowMoveOutcome(WindowMoved{}));
    ASSERT_EQ(elements.sets.size(), 2u);
    EXPECT_EQ(elements.sets[0].second, AXAttribute::position);
    EXPECT_EQ(elements.sets[1].second, AXAttribute::size);
    EXPECT_EQ(elements.attribute(windows[0], AXAttribute::position), AXValue(Point{0, 0}));
    EXPECT_EQ(elements.attribute(windows[0], AXAttribute::size), AXValue(Size{800, 600}));
}

TEST_F(WindowMoverTest, RefusesUnsafeTargetsBeforeItTouchesAnything) {
    add(live);
    for (const Rect& unsafe : {Rect{0, 0, 0, 1}, Rect{0, 0, 1, std::nan("")}, Rect{-20000.1, 0, 1, 1},
                               Rect{0, 20000.1, 1, 1}, Rect{0, 0, 20000.1, 1}})
        EXPECT_THAT(failure(unsafe), StartsWith("Rejected unsafe target frame "));
    EXPECT_EQ(elements.calls, 0);
    EXPECT_EQ(move({-20000, 20000, 20000, 20000}), WindowMoveOutcome(WindowMoved{}));
}

TEST_F(WindowMoverTest, SaysWhyThereIsNoWindowToMove) {
    auto& answer = elements.application(pid).attributes[AXAttribute::windows];
    answer = std::unexpected(AXError::apiDisabled);
    EXPECT_EQ(failure(), "Accessibility access is disabled for Tavrin for pid 123; result=apiDisabled");
    answer = std::unexpected(AXError::cannotComplete);
    EXPECT_EQ(failure(), "AX window list unavailable for pid 123; result=cannotComplete");
    answer = std::unexpected(static_cast<AXError>(-7));
    EXPECT_THAT(failure(), HasSubstr("result=unknown(-7)"));
    answer = AXValue(std::string("windows"));
    EXPECT_THAT(failure(), AllOf(HasSubstr("unexpectedValue="), HasSubstr("valueType=string")));
    answer = AXValue(std::vector<AXElement>{});
    EXPECT_EQ(failure(), "AX window list empty for pid 123; result=success");
}

TEST_F(WindowMoverTest, TriesBothStepsAndReportsEachThatFailed) {
    add(live);
    elements.setResults = {{AXAttribute::position, AXError::cannotComplete},
                           {AXAttribute::size, AXError::invalidUIElement}};
    EXPECT_THAT(failure(), AllOf(StartsWith("AX move failed for target "),
                                 HasSubstr("; position=cannotComplete, size=invalidUIElement")));
    EXPECT_EQ(elements.sets.size(), 2u);
    elements.setResults.erase(AXAttribute::position);
    EXPECT_THAT(failure(),
                AllOf(HasSubstr("; size=invalidUIElement"), ::testing::Not(HasSubstr("position="))));
}

TEST_F(WindowMoverTest, TakesTheOnlyWindowAtTheLiveFrame) {
    add(shifted(2.0));
    add(shifted(1.99));
    EXPECT_EQ(moved(), "1");
}

TEST_F(WindowMoverTest, TellsWindowsAtTheSameFrameByTitleThenRoleThenSlot) {
    add(live, "a", "AXDialog");
    add(live, "b");
    add(live, "b", "AXDialog");
    saved.windowTitle = "A";
    EXPECT_EQ(moved(), "0");
    elements.applications.clear();
    windows.clear();
    add(live, "b", "AXDialog");
    add(live, "b");
    saved.windowTitle = "gone";
    saved.windowSubrole = "AXStandardWindow";
    EXPECT_EQ(moved(), "1");
    elements.applications.clear();
    windows.clear();
    add(live, "b");
    add(live, "b");
    for (const auto& [slot, expected] :
         std::initializer_list<std::pair<std::optional<std::int64_t>, const char*>>{
             {std::nullopt, "0"}, {1, "1"}, {-4, "0"}, {9, "1"}}) {
        saved.slotIndex = slot;
        windows.clear();
        elements.applications.clear();
        add(live, "b");
        add(live, "b");
        EXPECT_EQ(moved(), expected);
    }
}

TEST_F(WindowMoverTest, GoesByTheLiveTitleWhenTheSavedOneIsGone) {
    add(live, "mail");
    add(live, "news");
    saved.windowTitle = "what was open last week";
    const auto outcome = move(target, "News ");
    EXPECT_EQ(outcome, WindowMoveOutcome(WindowMoved{}));
    EXPECT_EQ(elements.sets.at(0).first, windows[1]);

    elements.applications.clear();
    windows.clear();
    saved.windowTitle = "mail";
    saved.windowRole = "AXSheet";
    add(shifted(500), "mail");
    add(shifted(10), "news");
    EXPECT_EQ(moved(), "0") << "the only one with the title, however far";
}

TEST_F(WindowMoverTest, TakesTheOnlyOneInTheSavedRoleElsewhere) {
    saved.windowRole = "AXWindow";
    saved.windowSubrole = "AXDialog";
    add(shifted(500), "x");
    add(shifted(900), "y", "AXDialog");
    EXPECT_EQ(moved(), "1");
}

TEST_F(WindowMoverTest, TakesTheNearestOnlyWhenItIsNearAndClearlyNearest) {
    struct Case {
        std::vector<double> distances;
        std::vector<std::string> titles;
        std::string expected; ///< the start of the message when it is no number
    };
    for (const Case& c :
         {Case{{10, 34}, {"a", "b"}, "0"}, Case{{34, 10}, {"a", "b"}, "1"},
          Case{{10, 33.9}, {"a", "b"}, "AX target selection failed"}, Case{{10, 20}, {"t", "t"}, "0"},
          Case{{160, 500}, {"a", "b"}, "0"}, Case{{150, 165}, {"a", "b"}, "0"},
          Case{{160.5, 500}, {"a", "b"}, "AX target selection failed"}, Case{{5000}, {"a"}, "0"}}) {
        windows.clear();
        elements.applications.clear();
        for (std::size_t i = 0; i < c.distances.size(); ++i)
            add(shifted(c.distances[i]), c.titles[i]);
        EXPECT_THAT(moved(), StartsWith(c.expected)) << c.distances[0];
    }
}

TEST_F(WindowMoverTest, DescribesAChoiceThatFailed) {
    saved.windowRole = "AXWindow";
    add(shifted(300), "a");
    add(shifted(310), "b");
    elements.addWindow(pid, live, "c")->attributes.erase(AXAttribute::position);
    EXPECT_THAT(failure(), AllOf(HasSubstr("candidatesWithFrames=2"), HasSubstr("frameMatches=0"),
                                 HasSubstr("roleMatches=3"), HasSubstr("nearestScore=300"),
                                 HasSubstr("savedRole=AXWindow"), HasSubstr("savedSubrole=")));
}

TEST(RunningApplicationResolver, AsksForIdentifierThenForName) {
    testing::FixedApplications applications;
    applications.applications = {{1, "b.desktop", "B", false},
                                 {2, "a.desktop", std::nullopt, false},
                                 {3, "a.desktop", "A", true},
                                 {4, std::nullopt, "C", false}};
    RunningApplicationResolver resolver{applications};
    auto window = testing::window(1, "A", "", live);
    window.ownerPID = 0;
    window.bundleIdentifier = "a.desktop";
    EXPECT_EQ(resolver.processIdentifier(window), 0);
    EXPECT_EQ(applications.lookups, 0);
    window.ownerPID.reset();
    EXPECT_EQ(resolver.processIdentifier(window), 2) << "the first instance, whatever its state";
    window.bundleIdentifier = "gone.desktop";
    EXPECT_EQ(resolver.processIdentifier(window), 3);
    window.appName = "a";
    EXPECT_EQ(resolver.processIdentifier(window), std::nullopt);
}

} // namespace
} // namespace tavrin
