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

enum class Desks {
    ownTitles,  ///< every window has a title of its own
    sameTitle,  ///< all windows have the same
    equalSlots, ///< likewise, and the saved slots do not tell them apart
    generic,    ///< the layout does not care for applications
};

/// One application with that many windows, moved and listed in another order than they were saved in.
Desk scatteredDesk(std::int64_t count, Desks kind) {
    std::mt19937 random(42);
    Desk desk{.layout = testing::layout("Work", {},
                                        kind == Desks::generic ? SavedLayoutKind::generic
                                                               : SavedLayoutKind::appSpecific)};
    for (std::int64_t i = 0; i < count; ++i) {
        const auto title = kind == Desks::ownTitles ? "Window " + std::to_string(i) : std::string("Same");
        const Rect saved{static_cast<double>(random() % 1400), static_cast<double>(random() % 800), 500, 250};
        const Rect now{static_cast<double>(random() % 1400), static_cast<double>(random() % 800), 500, 250};
        desk.layout.entries.push_back(
            testing::entry("editor", title, saved, kind == Desks::equalSlots ? 0 : i));
        desk.windows.push_back(testing::window(i + 1, "editor", title, now));
    }
    std::ranges::shuffle(desk.windows, random);
    return desk;
}

void pairing(benchmark::State& state, Desks kind) {
    const auto desk = scatteredDesk(state.range(0), kind);
    const auto displays = testing::leftAlone().displays;
    for (auto _ : state)
        benchmark::DoNotOptimize(RestoreMatcher().pairs(desk.layout, desk.windows, displays));
    state.SetComplexityN(state.range(0));
}

void arguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(100)->Arg(1000)->Complexity()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(pairing, ownTitles, Desks::ownTitles)->Apply(arguments);
BENCHMARK_CAPTURE(pairing, sameTitle, Desks::sameTitle)->Apply(arguments);
BENCHMARK_CAPTURE(pairing, equalSlots, Desks::equalSlots)->Apply(arguments);
BENCHMARK_CAPTURE(pairing, generic, Desks::generic)->Apply(arguments);

} // namespace
