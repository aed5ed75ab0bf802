#include "doubles/builders.h"
#include "restore/restore_matcher.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

namespace {

using namespace tavrin;

struct Desk {
    SavedLayout layout;
    std::vector<WindowInfo> windows;
};

/// One application with that many windows, moved and listed in another order than they were saved in.
Desk scatteredDesk(std::int64_t count, bool hasTitles, SavedLayoutKind kind) {
    std::mt19937 random(42);
    Desk desk{.layout = testing::layout("Work", {}, kind)};
    for (std::int64_t i = 0; i < count; ++i) {
        const auto title = hasTitles ? "Window " + std::to_string(i) : std::string("Same");
        const Rect saved{static_cast<double>(random() % 1400), static_cast<double>(random() % 800), 500, 250};
        const Rect now{static_cast<double>(random() % 1400), static_cast<double>(random() % 800), 500, 250};
        desk.layout.entries.push_back(testing::entry("editor", title, saved, i));
        desk.windows.push_back(testing::window(i + 1, "editor", title, now));
    }
    std::ranges::shuffle(desk.windows, random);
    return desk;
}

void pairing(benchmark::State& state, bool hasTitles, SavedLayoutKind kind) {
    const auto desk = scatteredDesk(state.range(0), hasTitles, kind);
    const auto displays = testing::leftAlone().displays;
    for (auto _ : state)
        benchmark::DoNotOptimize(RestoreMatcher().pairs(desk.layout, desk.windows, displays));
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(pairing, ownTitles, true, SavedLayoutKind::appSpecific)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pairing, sameTitle, false, SavedLayoutKind::appSpecific)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pairing, generic, false, SavedLayoutKind::generic)
    ->Arg(10)
    ->Arg(100)
    ->Arg(1000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

} // namespace
