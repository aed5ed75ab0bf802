#include "capture/capture_service.h"
#include "doubles/builders.h"
#include "doubles/stored_data.h"
#include "restore/restore_matcher.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

namespace tavrin {
namespace {

using testing::window;

struct CaptureFixture : testing::StoredData {
    testing::FixedWindows windows;
    testing::FixedAXWindows axWindows;
    CaptureService service{{windows, &axWindows, store, settings, displays, time}, 4711};

    CaptureFixture() { displays.snapshot = testing::desk(); }

    std::expected<SavedLayout, CaptureService::Error>
    capture(std::string_view name = "Work", SavedLayoutKind kind = SavedLayoutKind::appSpecific) {
        const auto profile = service.resolveProfileID();
        return service.capture(name, kind, profile.value());
    }
};

class CaptureTest : public ::testing::Test, protected CaptureFixture {};

AXWindowSnapshot described(std::string application, std::string title, Rect frame, std::string subrole) {
    return {application + ".desktop", application, std::move(title), "AXWindow", std::move(subrole), frame};
}

TEST_F(CaptureTest, MakesAProfileForAnUnknownSetupAndReusesOnlyAnExactOne) {
    const auto made = service.resolveProfileID();
    ASSERT_TRUE(made);
    EXPECT_EQ(store.loadProfiles()->front().name, "2-Display Setup");
    EXPECT_EQ(service.resolveProfileID(), made);
    displays.snapshot.displays[0].stableID = "other unit";
    const auto suggestedOnly = service.resolveProfileID();
    EXPECT_NE(suggestedOnly, made) << "a setup that is merely similar is another one";
    EXPECT_EQ(store.loadProfiles()->size(), 2u);
}

TEST_F(CaptureTest, ChecksTheNameAndTheWindows) {
    windows.windows = {window(1, "a", "t", {0, 0, 100, 100})};
    EXPECT_EQ(capture(" \n").error(), CaptureService::Error(CaptureError::emptyLayoutName));
    std::string fifty;
    for (int i = 0; i < 50; ++i)
        fifty += "é";
    EXPECT_EQ(capture(fifty + "x").error(), CaptureService::Error(CaptureError::nameTooLong));
    EXPECT_EQ(capture("  " + fifty + "\n")->name, fifty);
    windows.windows[0].ownerPID = 4711;
    EXPECT_EQ(capture("own window").error(), CaptureService::Error(CaptureError::noWindowsFound));
    windows.windows.clear();
    EXPECT_EQ(capture().error(), CaptureService::Error(CaptureError::noWindowsFound));
    EXPECT_EQ(store.loadLayouts()->size(), 1u);
}

TEST_F(CaptureTest, DescribesEachWindowWithItsPlaceAndSlot) {
    auto anonymous = window(4, "b", "", {5000, 0, 100, 100});
    anonymous.bundleIdentifier.reset();
    windows.windows = {window(2, "a", " front ", {100, 105, 960, 525}),
                       window(1, "a", "back", {1900, 0, 960, 540}), anonymous};
    axWindows.snapshots = {described("a", "", {0, 0, 1, 1}, "AXDialog"),
                           described("a", "BACK", {0, 0, 1, 1}, "AXStandardWindow")};
    windows.windows[1].appName = "another name of a";
    const auto layout = capture();
    ASSERT_TRUE(layout);
    EXPECT_EQ(store.loadLayouts()->front().entries, layout->entries);
    ASSERT_EQ(layout->entries.size(), 3u);
    const auto &front = layout->entries[0], &back = layout->entries[1], &last = layout->entries[2];
    EXPECT_EQ(front.windowTitle, "front");
    EXPECT_EQ(front.windowSubrole, std::nullopt) << "no description is clearly this window's";
    EXPECT_EQ(front.displayIdentifier, "1-2-3");
    EXPECT_EQ(front.normalizedFrame, (Rect{100.0 / 1920, 0.1, 0.5, 0.5}));
    EXPECT_EQ(front.frame, windows.windows[0].frame);
    EXPECT_EQ(back.windowTitle, "BACK");
    EXPECT_EQ(back.windowSubrole, "AXStandardWindow");
    EXPECT_EQ(back.displayIdentifier, "1-2-4");
    EXPECT_EQ((std::vector{front.slotIndex, back.slotIndex, last.slotIndex}),
              (std::vector<std::optional<std::int64_t>>{0, 1, 0}));
    EXPECT_FALSE(last.bundleIdentifier || last.windowTitle || last.displayIdentifier || last.normalizedFrame);
    EXPECT_EQ(last.appName, "b");
    const std::vector<SavedDisplay> saved{{"1-2-3", {0, 0, 1920, 1050}, false},
                                          {"1-2-4", {1920, 0, 1920, 1080}, false}};
    EXPECT_EQ(layout->savedDisplays, saved);
}

TEST_F(CaptureTest, TakesTheNearestDescriptionOnlyWhenItIsClear) {
    windows.windows = {window(1, "a", "t", {0, 0, 400, 300})};
    for (const auto& [second, expected] : {std::pair{34.0, "AXDialog"}, {33.9, ""}}) {
        axWindows.snapshots = {described("a", "t", {second, 0, 400, 300}, "AXStandardWindow"),
                               described("a", "t", {10, 0, 400, 300}, "AXDialog")};
        EXPECT_EQ(capture()->entries[0].windowSubrole.value_or(""), expected);
    }
    axWindows.snapshots = {{std::nullopt, "a", "t", "AXWindow", "AXFloatingWindow", {9, 9, 9, 9}},
                           described("other", "t", {0, 0, 400, 300}, "AXDialog")};
    EXPECT_EQ(capture()->entries[0].windowSubrole, "AXFloatingWindow")
        << "without an identifier the name tells the application";
}

TEST_F(CaptureTest, GenericLayoutsLeaveApplicationDetailsOut) {
    windows.windows = {window(1, "a", "t", {0, 0, 400, 300})};
    axWindows.snapshots = {described("a", "t", {0, 0, 400, 300}, "AXDialog")};
    const auto layout = capture("g", SavedLayoutKind::generic);
    const auto& entry = layout->entries.at(0);
    EXPECT_FALSE(entry.appName || entry.windowTitle || entry.windowRole || entry.windowSubrole);
    EXPECT_EQ(entry.bundleIdentifier, "a.desktop");
    EXPECT_EQ(axWindows.calls, 0);
}

TEST_F(CaptureTest, ReplacesALayoutOfTheSameNameInAnyCapitals) {
    windows.windows = {window(1, "a", "t", {0, 0, 400, 300})};
    const auto first = capture("Wörk");
    time.pass(10);
    windows.windows.push_back(window(2, "b", "u", {0, 0, 400, 300}));
    const auto second = capture("WÖRK", SavedLayoutKind::generic);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->id, first->id);
    EXPECT_EQ(second->createdAt, first->createdAt);
    EXPECT_EQ(second->updatedAt, time.now());
    EXPECT_EQ(second->name, "WÖRK");
    const auto stored = store.loadLayouts().value();
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_EQ(stored[0].name, "Wörk") << "the stored name stays";
    EXPECT_EQ(stored[0].entries, second->entries);
    EXPECT_EQ(stored[0].kind, SavedLayoutKind::generic);
    EXPECT_EQ(stored[0].updatedAt, time.now());
    displays.snapshot = testing::leftAlone();
    EXPECT_NE(capture("wörk")->id, first->id) << "another setup has its own names";
}

TEST_F(CaptureTest, SkipsExcludedApplications) {
    windows.windows = {window(1, "a", "t", {0, 0, 400, 300})};
    ASSERT_TRUE(settings.save({.excludedBundleIDs = {"a.desktop"}}));
    const auto layout = capture();
    ASSERT_TRUE(layout) << "excluding the only application is no failure";
    EXPECT_TRUE(layout->entries.empty());
    files.files["/data/settings.json"] = "broken";
    EXPECT_FALSE(capture("unreadable settings"));
    EXPECT_EQ(store.loadLayouts()->size(), 1u);
}

TEST(CaptureAndRestore, OnTheUnchangedSetupMoveNothing) {
    EXPECT_TRUE(rc::check([] {
        CaptureFixture desktop;
        if (*rc::gen::arbitrary<bool>()) // twins without serial numbers, one above a panel, one taller
            desktop.displays.snapshot = {
                {testing::display("1-2-0", {0, 40, 1920, 1040}, {0, 0, 0.5, 0.9}),
                 testing::display("1-2-0", {1920, -120, 1920, 1200}, {0.5, 0, 0.5, 1})}};
        const int count = *rc::gen::inRange(1, 8);
        for (int i = 0; i < count; ++i) {
            const auto number = [](int low, int high) {
                return static_cast<double>(*rc::gen::inRange(low, high));
            };
            const Rect frame{number(-500, 3800), number(-500, 1300), number(50, 4000), number(50, 1300)};
            desktop.windows.windows.push_back(
                window(i, std::string(1, *rc::gen::inRange('a', 'd')), "title " + std::to_string(i), frame));
        }
        const auto layout = desktop.capture().value();
        const auto pairs =
            RestoreMatcher{}.pairs(layout, desktop.windows.windows, desktop.displays.snapshot.displays);
        RC_ASSERT(pairs.size() == desktop.windows.windows.size());
        for (const auto& pair : pairs)
            RC_ASSERT(frameDistance(pair.windowInfo.frame, pair.translatedFrame) < 1e-9);
    }));
}

} // namespace
} // namespace tavrin
