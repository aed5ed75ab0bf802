#include "doubles/builders.h"
#include "placement/window_placement.h"

#include <gmock/gmock.h>
#include <rapidcheck.h>

namespace tavrin {
namespace {

using ::testing::ElementsAre;

DisplayPlacementInput place(std::string id, Rect visible) {
    return {id, "key-" + id, visible};
}
SavedDisplay saved(std::string id, Rect visible) {
    return {std::move(id), visible, false};
}

/// The current display that takes the windows of each saved one, in their order.
std::vector<std::string> targets(const DisplayRemapping& remapping) {
    std::vector<std::string> ids;
    for (const auto& display : remapping.perSaved)
        ids.push_back(*display.target.stableID);
    return ids;
}

std::string displayOf(const Rect& window, const std::vector<DisplayPlacementInput>& displays) {
    const auto placement = WindowPlacementNormalizer{}.normalize(window, displays);
    return placement ? placement->displayIdentifier : "none";
}

TEST(WindowPlacementNormalizer, TakesTheDisplayWithTheLargestOverlap) {
    const std::vector displays{place("A", {0, 0, 1000, 1000}), place("B", {1000, 0, 1000, 1000}),
                               place("flat", {0, 0, 5000, 0})};
    EXPECT_EQ(displayOf({400, 0, 1000, 500}, displays), "A");
    EXPECT_EQ(displayOf({500, 0, 1000, 500}, displays), "A") << "the first of equals";
    EXPECT_EQ(displayOf({501, 0, 1000, 500}, displays), "B");
    EXPECT_EQ(displayOf({2000, 0, 100, 100}, displays), "none") << "touching is not overlapping";
    EXPECT_EQ(displayOf({0, 0, 0, 100}, displays), "none");
    EXPECT_EQ(displayOf({0, 0, 10, 10}, {{std::nullopt, "key", {0, 0, 100, 100}}}), "key");
}

TEST(WindowPlacementNormalizer, KeepsFractionsAsTheyAre) {
    const auto placement =
        WindowPlacementNormalizer{}.normalize({-100, 50, 500, 2000}, {place("A", {0, 0, 1000, 1000})});
    ASSERT_TRUE(placement);
    EXPECT_EQ(placement->normalizedFrame, (Rect{-0.1, 0.05, 0.5, 2}));
}

TEST(DisplayRemapper, PairsByIdentityThenBySimilarityThenByTheLargest) {
    const Rect big{0, 0, 2000, 1000}, small{2000, 0, 1000, 800};
    const auto A = place("A", big), C = place("C", small);
    const DisplayRemapper remapper;

    const auto exact = remapper.remap({saved("A", big), saved("key-C", small)}, {A, C});
    EXPECT_TRUE(exact.isExact);
    EXPECT_THAT(targets(exact), ElementsAre("A", "C")) << "the arrangement key identifies too";

    const auto similar = remapper.remap({saved("A", big), saved("B", small)}, {A, C});
    EXPECT_FALSE(similar.isExact);
    EXPECT_THAT(targets(similar), ElementsAre("A", "C"));

    EXPECT_THAT(targets(remapper.remap({saved("A", big), saved("B", small), saved("X", small)}, {C})),
                ElementsAre("C", "C", "C"));

    EXPECT_EQ(remapper.remap({saved("A", big)}, {}), DisplayRemapping{});
    const auto tall = place("tall", {0, 0, 1200, 1600});
    EXPECT_EQ(remapper.remap({}, {C, A, tall, C}), (DisplayRemapping{.fallbackTarget = A}));
    EXPECT_EQ(remapper.remap({}, {place("wide", {0, 0, 1900, 1000}), tall}).fallbackTarget, tall);
    EXPECT_EQ(remapper.remap({}, {place("1", big), place("2", big)}).fallbackTarget.stableID, "1");
}

TEST(DisplayRemapper, PrefersTheNearerAmongEqualsAndPairsEvenWithoutAreas) {
    const DisplayRemapper remapper;
    const auto near = place("near", {100, 0, 1000, 1000}), far = place("far", {5000, 0, 1000, 1000});
    EXPECT_THAT(targets(remapper.remap({saved("gone", {0, 0, 1000, 1000})}, {far, near})),
                ElementsAre("near"));
    // The best pair goes first, wherever it stands in the list.
    EXPECT_THAT(
        targets(remapper.remap({saved("left", {4000, 0, 1000, 1000}), saved("right", {5000, 0, 1000, 1000})},
                               {far, near})),
        ElementsAre("near", "far"));
    EXPECT_THAT(targets(remapper.remap({saved("flat", {0, 0, 0, 0})}, {far, near})), ElementsAre("far"));
}

// A tenth of the saved display's side counts as much as a hundredth of its area.
TEST(DisplayRemapper, WeighsDistanceAgainstArea) {
    const auto chosen = [](double distance, double area) {
        return targets(DisplayRemapper{}.remap({saved("gone", {0, 0, 1000, 1000})},
                                               {place("far", {0, distance, 1000, 1000}),
                                                place("smaller", {0, 0, 1000, 1000 * area})}))
            .at(0);
    };
    EXPECT_EQ(chosen(990, 0.9), "far");
    EXPECT_EQ(chosen(1010, 0.9), "smaller");
    EXPECT_EQ(chosen(1010, 1 / 0.9), "smaller") << "too large is as bad as too small";
    EXPECT_EQ(chosen(990, 1 / 0.9), "far");
}

TEST(DisplayRemapper, TellsDisplaysOfOneIdentityApartByTheirPlace) {
    const auto left = saved("twin", {0, 0, 1920, 1080}), right = saved("twin", {1920, 0, 1920, 1080});
    const auto twin = [](Rect visible) { return place("twin", visible); };
    const auto placesOf = [](const DisplayRemapping& remapping) {
        std::vector<double> places;
        for (const auto& display : remapping.perSaved)
            places.push_back(display.target.visibleFrame.x);
        return places;
    };
    const DisplayRemapper remapper;
    for (const Rect& changed : {Rect{0, 0, 1920, 1080}, Rect{0, 0, 1920, 1040}, Rect{0, 0, 1280, 720}}) {
        const auto remapping =
            remapper.remap({left, right}, {twin({changed.width, 0, 1920, 1080}), twin(changed)});
        EXPECT_TRUE(remapping.isExact);
        EXPECT_THAT(placesOf(remapping), ElementsAre(0, changed.width));
    }
    EXPECT_THAT(placesOf(remapper.remap({left, right},
                                        {twin({1920, 0, 1920, 1080}), place("big", {0, 0, 3000, 2000})})),
                ElementsAre(0, 1920))
        << "the one that stayed is the right one";
}

Rect target(Rect normalized, Rect visible, std::optional<std::string> display = "A") {
    auto entry = testing::entry("app", "t", {1, 2, 3, 4});
    entry.normalizedFrame = normalized;
    entry.displayIdentifier = std::move(display);
    return WindowPlacementTranslator{}.targetFrame(entry,
                                                   {.perSaved = {{saved("A", {}), place("A", visible)}},
                                                    .fallbackTarget = place("F", {0, 0, 1000, 1000})});
}

TEST(WindowPlacementTranslator, KeepsWindowsInsideTheirDisplayAndWithinLimits) {
    EXPECT_EQ(target({0.25, 0.5, 0.5, 0.25}, {100, 50, 2000, 1000}), (Rect{600, 550, 1000, 250}));
    EXPECT_EQ(target({0, 0, 0.05, 0.05}, {0, 0, 1440, 900}), (Rect{0, 0, 200, 150})) << "the minimum";
    EXPECT_EQ(target({0, 0, 0.05, 0.05}, {0, 0, 150, 100}), (Rect{0, 0, 150, 100})) << "the display wins";
    EXPECT_EQ(target({0, 0, 1, 1}, {0, 0, 9000, 9000}), (Rect{0, 0, 6000, 4000})) << "the maximum wins";
    EXPECT_EQ(target({0.9, -0.5, 0.5, 0.5}, {0, 0, 1000, 1000}), (Rect{500, 0, 500, 500}));
    EXPECT_EQ(target({0.5, 0.5, 0.5, 0.5}, {0, 0, 2000, 2000}, "unknown"), (Rect{500, 500, 500, 500}));
    EXPECT_EQ(target({0.5, 0.5, 0.5, 0.5}, {0, 0, 0, 100}), (Rect{1, 2, 3, 4})) << "no area, no change";
    const auto legacy = testing::entry("app", "t", {-5000, 2, 30000, 4});
    EXPECT_EQ(WindowPlacementTranslator{}.targetFrame(legacy, {.fallbackTarget = place("F", {0, 0, 9, 9})}),
              legacy.frame);
}

TEST(WindowPlacementTranslator, KeepsTheFrameOnAnUnchangedDisplayAsLongAsItAgreesWithItsFractions) {
    const Rect visible{0, 40, 1000, 1000};
    auto saved = testing::entry("app", "t", {900, 1000, 300, 100});
    saved.displayIdentifier = "A";
    const auto target = [&](double offset, Rect now) {
        saved.normalizedFrame = Rect{0.9 + offset / 1000, 0.96, 0.3, 0.1};
        return WindowPlacementTranslator{}.targetFrame(
            saved, {.perSaved = {{{"A", visible, false}, place("A", now)}}, .fallbackTarget = {}});
    };
    EXPECT_EQ(target(0, visible), saved.frame);
    EXPECT_EQ(target(0.009, visible), saved.frame);
    EXPECT_EQ(target(0.011, visible), (Rect{700, 890, 300, 150}));
    EXPECT_EQ(target(0, {0, 40, 1000, 1001}).width, 300) << "another display, however little it differs";
    EXPECT_NE(target(0, {0, 40, 1000, 1001}), saved.frame);
}

TEST(WindowPlacementTranslator, TargetFramesLieInsideTheirDisplay) {
    EXPECT_TRUE(rc::check([] {
        const auto number = [](int low, int high) {
            return static_cast<double>(*rc::gen::inRange(low, high));
        };
        const Rect visible{number(-5000, 5000), number(-5000, 5000), number(1, 8000), number(1, 8000)};
        const Rect frame = target(
            {number(-300, 300) / 100, number(-300, 300) / 100, number(1, 300) / 100, number(1, 300) / 100},
            visible);
        RC_ASSERT(frame.x >= visible.x - 1e-6);
        RC_ASSERT(frame.y >= visible.y - 1e-6);
        RC_ASSERT(frame.maxX() <= visible.maxX() + 1e-6);
        RC_ASSERT(frame.maxY() <= visible.maxY() + 1e-6);
        RC_ASSERT(frame.width > 0 && frame.height > 0);
    }));
}

} // namespace
} // namespace tavrin
