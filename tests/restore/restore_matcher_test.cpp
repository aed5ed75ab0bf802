#include "doubles/builders.h"
#include "placement/window_placement.h"
#include "restore/restore_matcher.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

namespace tavrin {
namespace {

using testing::entry;
using testing::layout;
using testing::window;

const std::vector<DisplaySnapshot> oneDisplay = testing::leftAlone().displays;

/// Which window each entry got, as "entry>window", by position and window number.
std::string pairing(const SavedLayout& saved, const std::vector<WindowInfo>& windows) {
    std::string text;
    for (std::size_t i = 0; i < saved.entries.size(); ++i)
        for (const auto& pair : RestoreMatcher{}.pairs(saved, windows, oneDisplay))
            if (pair.savedEntry.id == saved.entries[i].id)
                text += std::to_string(i) + ">" + std::to_string(pair.windowInfo.id) + " ";
    return text;
}

const Rect home{0, 0, 400, 300}, away{900, 500, 400, 300};

TEST(RestoreMatcher, PairsWithinAnApplicationByTitleThenFrameThenSlot) {
    EXPECT_EQ(pairing(layout("title", {entry("a", "CAFÉ", home)}),
                      {window(1, "a", "other", home), window(2, "a", " cafe\n", away)}),
              "0>2 ");
    EXPECT_EQ(pairing(layout("frame", {entry("a", "t", home)}),
                      {window(1, "a", "t", away), window(2, "a", "t", home)}),
              "0>2 ");
    EXPECT_EQ(pairing(layout("slot", {entry("a", "t", home, 1)}),
                      {window(1, "a", "t", home), window(2, "a", "t", home)}),
              "0>2 ");
    EXPECT_EQ(
        pairing(layout("slots count by window number", {entry("a", "t", home, 0), entry("a", "t", home, 1)}),
                {window(9, "a", "t", home), window(3, "a", "t", home)}),
        "0>3 1>9 ");
    EXPECT_EQ(pairing(layout("equals keep their order", {entry("a", "t", home), entry("a", "t", home)}),
                      {window(3, "a", "t", home), window(9, "a", "t", home)}),
              "0>3 1>9 ");
    const auto slots = layout("pairs come in the order of the slots",
                              {entry("a", "sure", home, 1), entry("a", "gone", away, 0)});
    const auto pairs =
        RestoreMatcher{}.pairs(slots, {window(1, "a", "sure", home), window(2, "a", "x", home)}, oneDisplay);
    EXPECT_EQ(pairs.at(0).savedEntry, slots.entries[1]);
    EXPECT_EQ(pairing(layout("a blank saved title says nothing", {entry("a", " ", home)}),
                      {window(1, "a", "x", away), window(2, "a", "y", home)}),
              "0>2 ");
    EXPECT_EQ(pairing(layout("other application", {entry("a", "t", home)}), {window(1, "b", "t", home)}), "");
}

TEST(RestoreMatcher, WeighsTitlesSlotsAndNamesInPoints) {
    const auto shifted = [](double x) { return window(2, "a", "t", {x, 0, 400, 300}); };
    for (const auto& [x, expected] : {std::pair{24.9, "0>2 "}, {25.1, "0>1 "}})
        EXPECT_EQ(
            pairing(layout("slot 1", {entry("a", "t", home, 1)}), {window(1, "a", "t", home), shifted(x)}),
            expected);
    // 10,000 for the title against 500 for another one and 25 for the slot.
    for (const auto& [x, expected] : {std::pair{10524, "0>1 "}, {10526, "0>2 "}})
        EXPECT_EQ(pairing(layout("title", {entry("a", "t", home)}),
                          {window(1, "a", "t", {double(x), 0, 400, 300}), window(2, "a", "other", home)}),
                  expected);
    auto renamed = window(1, "a", "t", home);
    renamed.appName = "A (beta)";
    // 100 for the name against the distance and 25 for the slot.
    for (const auto& [x, expected] : {std::pair{99, "0>1 "}, {74, "0>2 "}})
        EXPECT_EQ(pairing(layout("name", {entry("a", "t", home)}), {renamed, shifted(x)}), expected);
}

TEST(RestoreMatcher, LeavesOutWhatCannotBePaired) {
    auto anonymousEntry = entry("a", "t", home);
    anonymousEntry.bundleIdentifier.reset();
    auto anonymousWindow = window(1, "a", "t", home);
    anonymousWindow.bundleIdentifier.reset();
    EXPECT_EQ(pairing(layout("entry without application", {anonymousEntry}), {window(1, "a", "t", home)}),
              "");
    EXPECT_EQ(pairing(layout("window without application", {entry("a", "t", home)}), {anonymousWindow}), "");
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Rect& frame :
         {Rect{0, 0, 0, 100}, Rect{0, 0, 100, -1}, Rect{20000.1, 0, 100, 100}, Rect{0, -20000.1, 100, 100},
          Rect{0, 0, 20000.1, 100}, Rect{0, infinity, 1, 1}, Rect{std::nan(""), 0, 100, 100}})
        EXPECT_EQ(pairing(layout("insane", {entry("a", "t", frame)}), {window(1, "a", "t", home)}), "");
    EXPECT_EQ(pairing(layout("just sane", {entry("a", "t", {-20000, 20000, 20000, 20000})}),
                      {window(1, "a", "t", {std::nan(""), 0, 100, 100})}),
              "0>1 ");
}

TEST(RestoreMatcher, PairsGenericLayoutsByDistanceAlone) {
    const auto generic = [](std::vector<SavedLayoutEntry> entries) {
        return layout("g", std::move(entries), SavedLayoutKind::generic);
    };
    EXPECT_EQ(pairing(generic({entry("a", "t", home)}), {window(1, "b", "u", {500, 0, 400, 300})}), "0>1 ");
    EXPECT_EQ(pairing(generic({entry("a", "t", home)}), {window(1, "b", "u", {500.01, 0, 400, 300})}), "");
    EXPECT_EQ(pairing(generic({entry("a", "t", home), entry("a", "t", {100, 0, 400, 300})}),
                      {window(1, "b", "u", {90, 0, 400, 300}), window(2, "b", "u", {200, 0, 400, 300})}),
              "0>2 1>1 ")
        << "the nearest pair goes first";
}

TEST(RestoreMatcher, SendsSurplusWindowsToTheDominantPlace) {
    const std::vector entries{entry("a", "1", away), entry("a", "2", home), entry("a", "3", home),
                              entry("a", "4", home), entry("b", "5", home),
                              // What cannot be trusted leaves no window out.
                              entry("a", "6", {0, 0, 0, 9}), entry("a", "7", {0, 0, 0, 9})};
    std::vector<WindowInfo> windows{window(17, "a", "x", away), window(5, "a", "y", away),
                                    window(6, "c", "c", away), window(8, "b", "5", home)};
    for (int i = 1; i <= 4; ++i)
        windows.push_back(window(i, "a", std::to_string(i), away));
    const RestoreMatcher matcher;
    const auto saved = layout("many", entries);
    const auto pairs = matcher.pairs(saved, windows, oneDisplay);
    EXPECT_EQ(pairs.size(), 5u);
    const auto overflow = matcher.overflowPairs(saved, windows, oneDisplay, pairs);
    ASSERT_EQ(overflow.size(), 2u);
    EXPECT_EQ(overflow[0], (MatchedPair{entries[1], windows[1], home}));
    EXPECT_EQ(overflow[1], (MatchedPair{entries[1], windows[0], home}));

    const auto tie = layout("tie", {entry("a", "1", away), entry("a", "2", home)});
    const auto tiePairs = matcher.pairs(tie, windows, oneDisplay);
    EXPECT_EQ(matcher.overflowPairs(tie, windows, oneDisplay, tiePairs).front().translatedFrame, away)
        << "the place seen first wins a tie";
    EXPECT_TRUE(matcher.overflowPairs(layout("g", entries, SavedLayoutKind::generic), windows, oneDisplay, {})
                    .empty());
}

/// The target of a window that was saved at `frame` of `savedOn`, on the displays `now`.
Rect targetFrame(const Rect& frame, const std::vector<DisplaySnapshot>& savedOn,
                 const std::vector<DisplaySnapshot>& now) {
    const auto placement = WindowPlacementNormalizer{}.normalize(frame, placementInputs({savedOn}));
    auto saved = layout("l", {entry("a", "t", frame)});
    saved.entries[0].displayIdentifier = placement->displayIdentifier;
    saved.entries[0].normalizedFrame = placement->normalizedFrame;
    saved.savedDisplays.emplace();
    for (const auto& display : savedOn)
        saved.savedDisplays->push_back({display.id(), display.visibleFrame, false});
    return RestoreMatcher{}.pairs(saved, {window(1, "a", "t", {7, 7, 7, 7})}, now).at(0).translatedFrame;
}

TEST(RestoreMatcher, KeepsWindowsOnTheirOwnOneOfTwoEqualDisplays) {
    const auto left = testing::display("1-2-0", {0, 0, 1920, 1080}, {0, 0, 0.5, 1});
    const auto right = testing::display("1-2-0", {1920, 0, 1920, 1080}, {0.5, 0, 0.5, 1});
    auto shorter = left;
    shorter.visibleFrame.height = 1000; // a panel appeared
    EXPECT_EQ(targetFrame({100, 108, 800, 540}, {left, right}, {shorter, right}), (Rect{100, 100, 800, 500}));
    EXPECT_EQ(targetFrame({2020, 108, 800, 540}, {left, right}, {shorter, right}),
              (Rect{2020, 108, 800, 540}));
}

TEST(RestoreMatcher, PutsWindowsBackExactlyWhereTheirDisplayIsUnchanged) {
    const auto left = testing::display("1-2-0", {0, 40, 1920, 1040}, {0, 0, 0.5, 1});
    const auto right = testing::display("1-2-0", {1920, -120, 1600, 1200}, {0.5, 0, 0.5, 1}); // a twin
    const auto other = testing::display("9-9-9", {0, 0, 1000, 800});
    for (const Rect& frame :
         {Rect{0, 0, 1920, 1040}, Rect{100, 1070, 800, 600}, Rect{50, 50, 164, 164},
          Rect{-300, 500, 800, 600}, Rect{1920, 0, 1600, 1200}, Rect{2000, 1000, 400, 80}})
        EXPECT_EQ(targetFrame(frame, {left, right}, {left, right}), frame);
    EXPECT_EQ(targetFrame({100, 10, 800, 600}, {left, right}, {left}), (Rect{100, 10, 800, 600}));
    const auto moved = targetFrame({2000, 100, 800, 600}, {left, right}, {left});
    EXPECT_LE(moved.maxX(), 1920) << "the twin that is gone does not count as the one that stayed";
    EXPECT_LE(targetFrame({100, 10, 1800, 1000}, {left}, {other}).maxX(), 1000);
}

// The rule as it is told: all pairs, best first, each entry and each window once.
std::vector<std::pair<std::size_t, std::int64_t>> literalPairing(const SavedLayout& saved,
                                                                 std::vector<WindowInfo> windows) {
    auto entries = saved.entries;
    const bool isGeneric = saved.kind == SavedLayoutKind::generic;
    if (!isGeneric)
        std::ranges::stable_sort(windows, {}, &WindowInfo::id);
    struct Pair {
        std::size_t entry, window;
        double score;
    };
    std::vector<Pair> all;
    for (std::size_t i = 0; i < entries.size(); ++i)
        for (std::size_t j = 0; j < windows.size(); ++j) {
            const Rect &a = entries[i].frame, &b = windows[j].frame;
            if (isGeneric) {
                const double distance = std::hypot(a.x + a.width / 2 - b.x - b.width / 2,
                                                   a.y + a.height / 2 - b.y - b.height / 2);
                if (distance <= 500)
                    all.push_back({i, j, distance});
                continue;
            }
            all.push_back({i, j,
                           frameDistance(a, b) + (entries[i].windowTitle == windows[j].title ? -10000 : 500) +
                               (entries[i].appName == windows[j].appName ? 0 : 100) +
                               25 * std::abs(double(*entries[i].slotIndex) - double(j))});
        }
    std::ranges::stable_sort(all, {}, &Pair::score);
    std::vector<std::pair<std::size_t, std::int64_t>> taken;
    for (const Pair& pair : all)
        if (std::ranges::none_of(taken, [&](const auto& other) {
                return other.first == pair.entry || other.second == windows[pair.window].id;
            }))
            taken.emplace_back(pair.entry, windows[pair.window].id);
    if (!isGeneric)
        std::ranges::sort(taken);
    return taken;
}

TEST(RestoreMatcher, PairsLikeTheLiteralRule) {
    std::mt19937 random(1);
    const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    for (int round = 0; round < 5000; ++round) {
        // Few values, so that there are many ties; now and then more windows than an entry remembers.
        const unsigned size = round % 10 == 0 ? 60 : 12;
        const auto frame = [&] {
            return Rect{below(5) * 110.0, below(5) * 110.0, 200.0 + below(2) * 50, 200};
        };
        const auto title = [&] { return std::string(1, static_cast<char>('a' + below(4))); };
        std::vector<SavedLayoutEntry> entries;
        for (int i = 0, count = below(size); i < count; ++i) {
            entries.push_back(entry("app", title(), frame(), i / 2));
            if (below(4) == 0)
                entries.back().appName = "renamed";
        }
        std::vector<WindowInfo> windows;
        for (int i = 0, count = below(size); i < count; ++i)
            windows.push_back(window((i * 37) % 101, "app", title(), frame()));
        const auto saved =
            layout("any", entries, round % 2 == 0 ? SavedLayoutKind::generic : SavedLayoutKind::appSpecific);
        std::vector<std::pair<std::size_t, std::int64_t>> paired;
        for (const auto& pair : RestoreMatcher{}.pairs(saved, windows, oneDisplay)) {
            const auto position = std::ranges::find(saved.entries, pair.savedEntry.id, &SavedLayoutEntry::id);
            paired.emplace_back(position - saved.entries.begin(), pair.windowInfo.id);
        }
        ASSERT_EQ(paired, literalPairing(saved, windows)) << round;
    }
}

TEST(RestoreMatcher, NeverPairsAWindowOrAnEntryTwice) {
    EXPECT_TRUE(rc::check([] {
        const auto frame = [] {
            return Rect{*rc::gen::inRange(0, 4) * 100.0, *rc::gen::inRange(0, 4) * 100.0, 200, 200};
        };
        const auto name = [] { return std::string(1, *rc::gen::inRange('a', 'd')); };
        std::vector<SavedLayoutEntry> entries;
        for (int i = 0; i < *rc::gen::inRange(0, 12); ++i)
            entries.push_back(entry(name(), name(), frame(), *rc::gen::inRange(0, 5)));
        std::vector<WindowInfo> windows;
        for (int i = 0; i < *rc::gen::inRange(0, 12); ++i)
            windows.push_back(window(i, name(), name(), frame()));
        const auto kind = *rc::gen::element(SavedLayoutKind::generic, SavedLayoutKind::appSpecific);
        const auto saved = layout("any", entries, kind);
        auto pairs = RestoreMatcher{}.pairs(saved, windows, oneDisplay);
        for (const auto& pair : RestoreMatcher{}.overflowPairs(saved, windows, oneDisplay, pairs))
            pairs.push_back(pair);
        std::set<std::int64_t> pairedWindows;
        std::set<Uuid> pairedEntries;
        for (const auto& pair : pairs) {
            RC_ASSERT(pairedWindows.insert(pair.windowInfo.id).second);
            RC_ASSERT(pairedEntries.insert(pair.savedEntry.id).second ||
                      kind == SavedLayoutKind::appSpecific);
        }
        if (kind == SavedLayoutKind::generic)
            return;
        // Every window of an application that has entries goes somewhere.
        const auto isWanted = [&](const WindowInfo& candidate) {
            return std::ranges::find(entries, candidate.bundleIdentifier,
                                     &SavedLayoutEntry::bundleIdentifier) != entries.end();
        };
        RC_ASSERT(std::ranges::count_if(windows, isWanted) == std::ssize(pairs));
    }));
}

} // namespace
} // namespace tavrin
