#include "doubles/builders.h"
#include "doubles/fake_desktop.h"
#include "restore/running_application_resolver.h"
#include "restore/window_mover.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tavrin {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr ProcessID pid = 123;
const Rect live{100, 100, 400, 300};
const Rect target{0, 0, 800, 600};

/// The live frame with one number changed: at frame distance `by`.
Rect shifted(double by, double Rect::* number = &Rect::x) {
    Rect frame = live;
    frame.*number += by;
    return frame;
}

class WindowMoverTest : public ::testing::Test {
protected:
    testing::FakeElements elements;
    WindowMover mover{elements};
    SavedLayoutEntry saved = testing::entry("app", "", live);
    std::vector<AXElement> windows;

    void add(Rect frame, std::string title = "", std::string subrole = "AXStandardWindow",
             std::string role = "AXWindow") {
        windows.push_back(elements.addWindow(pid, frame, std::move(title), role, subrole));
    }
    void clear() {
        windows.clear();
        elements.applications.clear();
        elements.sets.clear();
    }

    WindowMoveOutcome move(const Rect& to = target, std::string liveTitle = "") {
        return mover.move(pid, saved, testing::window(1, "app", std::move(liveTitle), live), to);
    }

    /// The number of the window that is moved, or the failure.
    std::string moved(std::string liveTitle = "") {
        const auto outcome = move(target, std::move(liveTitle));
        if (const auto* failed = std::get_if<WindowMoveFailed>(&outcome))
            return failed->message;
        return std::to_string(std::ranges::find(windows, elements.sets.at(0)) - windows.begin());
    }

    std::string failure(const Rect& to = target) {
        const auto outcome = move(to);
        const auto* failed = std::get_if<WindowMoveFailed>(&outcome);
        return failed ? failed->message : "moved";
    }
};

TEST_F(WindowMoverTest, MovesTheListedWindowsTogetherWhereThePlatformKnowsThem) {
    add(live);
    add(live);
    for (std::int64_t number : {0, 1})
        elements.listed[number] = windows[static_cast<std::size_t>(number)];
    const auto first = testing::window(0, "app", "", live), second = testing::window(1, "app", "", live);
    const WindowMove moves[] = {{pid, saved, second, target},
                                {pid, saved, first, Rect{0, 0, 0, 1}},
                                {pid, saved, first, Rect{10, 20, 300, 200}}};
    const auto outcomes = mover.moveAll(moves);
    ASSERT_EQ(outcomes.size(), 3u);
    EXPECT_EQ(outcomes[0], WindowMoveOutcome(WindowMoved{}));
    EXPECT_TRUE(std::holds_alternative<WindowMoveFailed>(outcomes[1]));
    EXPECT_EQ(outcomes[2], WindowMoveOutcome(WindowMoved{}));
    EXPECT_EQ(elements.sets, (std::vector{windows[1], windows[0]}));
    EXPECT_EQ(elements.rounds, 1);
    EXPECT_EQ(elements.attribute(windows[1], AXAttribute::position), AXValue(Point{0, 0}));
    EXPECT_EQ(elements.attribute(windows[1], AXAttribute::size), AXValue(Size{800, 600}));
    elements.setResult.isTiled = true;
    EXPECT_EQ(mover.move(pid, saved, first, target),
              WindowMoveOutcome(WindowMoved{"tiled by the window manager: on its display"}));
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

TEST_F(WindowMoverTest, ReportsEachStepThatFailed) {
    add(live);
    elements.setResult = {.position = AXError::cannotComplete, .size = AXError::invalidUIElement};
    EXPECT_THAT(failure(), AllOf(StartsWith("AX move failed for target "),
                                 HasSubstr("; position=cannotComplete, size=invalidUIElement")));
    elements.setResult.position = AXError::success;
    EXPECT_THAT(failure(),
                AllOf(HasSubstr("; size=invalidUIElement"), ::testing::Not(HasSubstr("position="))));
}

TEST_F(WindowMoverTest, ChoosesByFrameTitleRoleAndSlotElseTheClearlyNearest) {
    struct Candidate {
        double distance; ///< from the live frame
        const char* title = "";
        const char* subrole = "AXStandardWindow";
        const char* role = "AXWindow";
    };
    const char* const dialog = "AXDialog";
    const char* const none = "AX target selection failed";
    const struct {
        const char* situation;
        const char* chosen; ///< the number of the window, or how the message starts
        std::vector<Candidate> candidates;
        const char* savedTitle = "";
        const char* liveTitle = "";
        std::optional<std::string> role = {}, subrole = {};
        std::optional<std::int64_t> slot = {};
    } cases[] = {
        {"title", "0", {{0, "a", dialog}, {0, "b"}, {0, "b", dialog}}, "A"},
        {"role", "1", {{0, "b", dialog}, {0, "b"}}, "gone", "", {}, "AXStandardWindow"},
        {"no slot", "0", {{0, "b"}, {0, "b"}}, "gone", "", {}, "AXStandardWindow"},
        {"slot", "1", {{0, "b"}, {0, "b"}}, "gone", "", {}, "AXStandardWindow", 1},
        {"slot too large", "1", {{0}, {0}}, "", "", {}, {}, 9},
        {"the saved title is gone, the live one counts", "1", {{0, "mail"}, {0, "news"}}, "gone", "News "},
        {"the only one with the title, however far",
         "0",
         {{500, "mail"}, {10, "news"}},
         "mail",
         "",
         "AXSheet"},
        {"the only one in the role", "1", {{500, "x"}, {900, "y", dialog}}, "", "", "AXWindow", dialog},
        {"clearly nearest", "0", {{10, "a"}, {34, "b"}}},
        {"not clearly", none, {{10, "a"}, {33.9, "b"}}},
        {"twins need not be told apart", "0", {{10, "t"}, {20, "t"}}},
        {"no twins: the subrole", none, {{10, "t"}, {20, "t", dialog}}},
        {"just near enough", "0", {{160, "a"}, {500, "b"}}},
        {"the other is too far to count", "0", {{150, "a"}, {165, "b"}}},
        {"too far", none, {{160.5, "a"}, {500, "b"}}},
        {"the only one", "0", {{5000, "a"}}},
    };
    for (const auto& test : cases) {
        clear();
        for (const auto& [distance, title, subrole, role] : test.candidates)
            add(shifted(distance), title, subrole, role);
        saved.windowTitle = test.savedTitle;
        saved.windowRole = test.role;
        saved.windowSubrole = test.subrole;
        saved.slotIndex = test.slot;
        EXPECT_THAT(moved(test.liveTitle), StartsWith(test.chosen)) << test.situation;
    }
    saved = testing::entry("app", "", live);
    for (const auto number : {&Rect::x, &Rect::y, &Rect::width, &Rect::height}) {
        clear();
        add(shifted(2.0, number));
        add(shifted(1.99, number));
        EXPECT_EQ(moved(), "1") << "the only one at the live frame";
    }
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
    EXPECT_EQ(resolver.processIdentifier(window), 2) << "the first instance, in any state";
    window.bundleIdentifier = "gone.desktop";
    EXPECT_EQ(resolver.processIdentifier(window), 3);
    window.appName = "a";
    EXPECT_EQ(resolver.processIdentifier(window), std::nullopt);
}

} // namespace
} // namespace tavrin
