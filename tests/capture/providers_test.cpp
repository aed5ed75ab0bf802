#include "capture/window_providers.h"
#include "doubles/fake_desktop.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavrin {
namespace {

RawWindowEntry raw(std::int64_t number, std::string owner, double width = 200, double height = 100) {
    return {.number = number,
            .ownerName = std::move(owner),
            .bounds = RawWindowBounds{10, 20, width, height},
            .name = "title",
            .isOnScreen = true,
            .ownerPID = 7};
}

TEST(WindowListProvider, KeepsUsableWindowsSortedByApplication) {
    testing::FixedApplications applications;
    applications.applications = {{7, "files.desktop", "Files", false}};
    testing::FixedRawWindows list;
    WindowListProvider provider{list, applications};
    EXPECT_TRUE(provider.currentWindows().empty());

    auto noNumber = raw(1, "A"), noBounds = raw(2, "A"), noWidth = raw(3, "A");
    noNumber.number.reset();
    noBounds.bounds.reset();
    noWidth.bounds->width.reset();
    RawWindowEntry noOwner = raw(4, "A");
    noOwner.ownerName.reset();
    RawWindowEntry bare{.number = 5, .ownerName = "Bare", .bounds = RawWindowBounds{{}, {}, 50, 50}};
    RawWindowEntry hosted = raw(6, "Hosted");
    hosted.ownerBundleIdentifier = "hosted.desktop";
    list.entries = {noNumber,
                    noBounds,
                    noWidth,
                    noOwner,
                    raw(10, "b"),
                    raw(12, "Zed"),
                    raw(11, "Zed"),
                    hosted,
                    bare,
                    raw(13, "Control Centre"),
                    raw(14, "Window Server"),
                    raw(15, "Notification Centre"),
                    raw(16, "Control Center"),
                    raw(17, "A", 49.9),
                    raw(18, "A", 50, std::nan(""))};
    const auto windows = provider.currentWindows();
    std::vector<std::int64_t> numbers;
    for (const auto& window : windows)
        numbers.push_back(window.id);
    ASSERT_EQ(numbers, (std::vector<std::int64_t>{5, 16, 6, 12, 11, 10}));
    EXPECT_EQ(windows[0], (WindowInfo{.id = 5, .appName = "Bare", .frame = {0, 0, 50, 50}}));
    EXPECT_EQ(windows[2].bundleIdentifier, "hosted.desktop");
    EXPECT_EQ(windows[3], (WindowInfo{.id = 12,
                                      .appName = "Zed",
                                      .bundleIdentifier = "files.desktop",
                                      .ownerPID = 7,
                                      .title = "title",
                                      .frame = {10, 20, 200, 100},
                                      .isOnScreen = true}));
}

TEST(AXWindowSnapshotProvider, ListsWhatAnswersInOrder) {
    testing::FakeElements elements;
    testing::FixedApplications applications;
    applications.applications = {{1, "gone.desktop", "Gone", true},
                                 {2, "nameless.desktop", std::nullopt, false},
                                 {3, "deaf.desktop", "Deaf", false},
                                 {4, "b.desktop", "B", false},
                                 {5, std::nullopt, "Unknown", false}};
    for (const ProcessID pid : {1, 2, 4, 5})
        elements.addWindow(pid, {1, 2, 300, 200}, "w" + std::to_string(pid));
    elements.application(3).attributes[AXAttribute::windows] = std::unexpected(AXError::cannotComplete);
    elements.addWindow(4, {0, 0, 50, 49.5}, "small");
    elements.addWindow(4, {0, 0, 50, 50}, "no position")->attributes.erase(AXAttribute::position);
    elements.addWindow(4, {0, 0, 50, 50}, "size of another kind")->attributes[AXAttribute::size] =
        Point{50, 50};
    auto plain = elements.addWindow(4, {5, 6, 50, 50}, "", std::nullopt, std::nullopt);
    plain->attributes.erase(AXAttribute::title);

    const auto snapshots = AXWindowSnapshotProvider{applications, elements}.currentSnapshots();
    EXPECT_EQ(snapshots,
              (std::vector<AXWindowSnapshot>{
                  {"b.desktop", "B", "w4", "AXWindow", "AXStandardWindow", {1, 2, 300, 200}},
                  {"b.desktop", "B", "", std::nullopt, std::nullopt, {5, 6, 50, 50}},
                  {std::nullopt, "Unknown", "w5", "AXWindow", "AXStandardWindow", {1, 2, 300, 200}}}));
}

} // namespace
} // namespace tavrin
