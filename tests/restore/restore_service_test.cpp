#include "doubles/builders.h"
#include "doubles/fake_desktop.h"
#include "restore/restore_service.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

const Rect home{0, 0, 400, 300}, away{900, 500, 400, 300};

struct RecordingMover : WindowMoving {
    std::vector<std::int64_t> moved;
    std::vector<std::pair<ProcessID, Rect>> orders;
    std::map<std::int64_t, std::string> failures; ///< by window number
    WindowMoveOutcome move(ProcessID pid, const SavedLayoutEntry& entry, const WindowInfo& window,
                           const Rect& target) override {
        EXPECT_EQ(entry.bundleIdentifier, window.bundleIdentifier);
        moved.push_back(window.id);
        orders.emplace_back(pid, target);
        if (const auto failure = failures.find(window.id); failure != failures.end())
            return WindowMoveFailed{failure->second};
        return WindowMoved{};
    }
};

struct OneProcess : RunningApplicationResolving {
    std::optional<ProcessID> answer;
    std::optional<ProcessID> processIdentifier(const WindowInfo&) override { return answer; }
};

struct FixedSettings : SettingsProviding {
    std::expected<AppSettings, StoreError> settings;
    std::expected<AppSettings, StoreError> load() override { return settings; }
};

class RestoreServiceTest : public ::testing::Test {
protected:
    testing::FixedWindows windows;
    RecordingMover mover;
    testing::FixedDisplays displays;
    FixedSettings settings;
    OneProcess resolver;
    testing::FixedPermission permission;
    SavedLayout saved =
        testing::layout("Work", {testing::entry("a", "1", home), testing::entry("a", "2", home),
                                 testing::entry("b", "3", home)});

    RestoreServiceTest() { displays.snapshot = testing::leftAlone(); }

    RestoreResult restore(SettingsProviding* provider) {
        return RestoreService({windows, mover, displays, provider, resolver, permission}, "/opt/tavrin")
            .restore(saved);
    }
    RestoreResult restore() { return restore(&settings); }
};

TEST_F(RestoreServiceTest, NeedsPermissionAndWindows) {
    permission.state = AccessibilityPermissionState::unknown;
    EXPECT_EQ(restore().moveFailureCount, 3);
    permission.state = AccessibilityPermissionState::denied;
    windows.windows = {testing::window(1, "a", "1", away)};
    EXPECT_EQ(restore(),
              RestoreResult(3, 0, 3,
                            {"Accessibility access is disabled for Tavrin. Open System Settings > Privacy "
                             "& Security > Accessibility and enable this app: /opt/tavrin"},
                            0, 3));
    permission.state = AccessibilityPermissionState::granted;
    windows.windows.clear();
    EXPECT_EQ(restore(), RestoreResult(3, 0, 3, {"No open windows found"}, 3, 0));
    EXPECT_TRUE(mover.moved.empty());
}

TEST_F(RestoreServiceTest, MovesWhatIsNotInPlace) {
    windows.windows = {testing::window(1, "a", "1", {2, -2, 402, 298}), testing::window(2, "a", "2", home)};
    for (const Rect& off : {Rect{2.0001, 0, 400, 300}, Rect{0, -2.0001, 400, 300}, Rect{0, 0, 402.0001, 300},
                            Rect{0, 0, 400, 297.9999}}) {
        windows.windows[1].frame = off;
        mover.moved.clear();
        mover.orders.clear();
        EXPECT_EQ(restore(), RestoreResult(3, 2, 1, {}, 1, 0));
        EXPECT_EQ(mover.moved, std::vector<std::int64_t>{2}) << ::testing::PrintToString(off);
    }
    windows.windows[1].ownerPID.reset();
    resolver.answer = 77;
    EXPECT_EQ(restore(), RestoreResult(3, 2, 1, {}, 1, 0));
    EXPECT_EQ(mover.orders, (std::vector<std::pair<ProcessID, Rect>>{{100, home}, {77, home}}));
}

TEST_F(RestoreServiceTest, CountsAndNamesEveryFailure) {
    windows.windows = {testing::window(1, "a", "1", away), testing::window(2, "a", "2", away),
                       testing::window(3, "b", "3", away)};
    windows.windows[1].ownerPID.reset();
    mover.failures[3] = "stuck";
    EXPECT_EQ(restore(), RestoreResult(3, 1, 2, {"Could not resolve PID for a", "b: stuck"}, 0, 2));
    EXPECT_EQ(mover.moved, (std::vector<std::int64_t>{1, 3}));
}

TEST_F(RestoreServiceTest, SendsSurplusWindowsAfterTheOthersWithoutCountingThem) {
    saved.entries = {testing::entry("a", "1", home)};
    windows.windows = {testing::window(1, "a", "1", away), testing::window(2, "a", "x", away),
                       testing::window(3, "a", "y", away), testing::window(4, "a", "z", home)};
    windows.windows[2].ownerPID.reset();
    mover.failures[2] = "stuck";
    const RestoreResult expected(1, 1, 0, {"a: overflow cluster move failed: stuck"}, 0, 0);
    EXPECT_EQ(restore(), expected);
    EXPECT_EQ(mover.moved, (std::vector<std::int64_t>{1, 2}));
    EXPECT_EQ(restore(nullptr), expected);
    settings.settings = std::unexpected(StoreError(UnreadableFile{}));
    EXPECT_EQ(restore(), expected) << "unreadable settings do not switch it off";
    settings.settings = AppSettings{.clusterExtraAppWindows = false};
    EXPECT_EQ(restore(), RestoreResult(1, 1, 0, {}, 0, 0));
}

TEST(RestoreResult, DerivesMissingCounts) {
    const auto counts = [](const RestoreResult& r) {
        return std::pair{r.unmatchedCount, r.moveFailureCount};
    };
    EXPECT_EQ(counts({3, 0, 3, {}}), (std::pair<std::int64_t, std::int64_t>{3, 0}));
    EXPECT_EQ(counts({4, 1, 3, {}, std::nullopt, 2}), (std::pair<std::int64_t, std::int64_t>{1, 2}));
    EXPECT_EQ(counts({2, 5, 0, {}}), (std::pair<std::int64_t, std::int64_t>{0, 0}));
    EXPECT_EQ(counts({5, 1, 4, {}, 1}), (std::pair<std::int64_t, std::int64_t>{1, 3}));
    EXPECT_EQ(restoreTriggerSource("Menu Bar"), RestoreTriggerSource::menuBar);
    EXPECT_EQ(restoreTriggerSource("menuBar"), std::nullopt);
}

} // namespace
} // namespace tavrin
