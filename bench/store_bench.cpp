#include "app/status_item_menu.h"
#include "doubles/builders.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_wall_clock.h"
#include "storage/profile_store.h"

#include <benchmark/benchmark.h>
#include <simdjson.h>

#include <cstdlib>
#include <filesystem>

namespace {

using namespace tavrin;

constexpr int layoutCount = 200;
constexpr int windowCount = 30;

/// A store on the disk, in a directory of its own, with four setups and all their layouts.
class FullStore {
public:
    FullStore() {
        std::string name = (std::filesystem::temp_directory_path() / "tavrin-bench-XXXXXX").string();
        directory_ = mkdtemp(name.data());
        paths_ = std::make_unique<AppSupportPaths>(files_, directory_);
        store_ = fresh();
        for (int setup = 0; setup < 4; ++setup)
            profileIDs_.push_back(store_->createProfile("Setup " + std::to_string(setup), {})->id);
        for (int i = 0; i < layoutCount; ++i)
            static_cast<void>(store_->saveLayout(newLayout(i)));
    }
    ~FullStore() { std::filesystem::remove_all(directory_); }
    FullStore(const FullStore&) = delete;
    FullStore& operator=(const FullStore&) = delete;

    /// A store that has read nothing yet, as when the program starts.
    std::unique_ptr<ProfileStore> fresh() { return std::make_unique<ProfileStore>(*paths_, clock_); }
    ProfileStore& store() { return *store_; }
    const AppSupportPaths& paths() const { return *paths_; }
    std::string layoutBytes() { return files_.read(paths_->layoutsFile()).value(); }
    std::string profileBytes() { return files_.read(paths_->profilesFile()).value(); }

    SavedLayout newLayout(int i) const {
        std::vector<SavedLayoutEntry> entries;
        for (int window = 0; window < windowCount; ++window) {
            auto entry = testing::entry("org.example.Application" + std::to_string(window % 7),
                                        "A window title of usual length, number " + std::to_string(window),
                                        {10.0 * window, 20.0 * window, 800, 600}, window / 7);
            entry.windowRole = "AXWindow";
            entry.windowSubrole = "AXStandardWindow";
            entry.displayIdentifier = "4268-16642-808661580";
            entry.normalizedFrame = {0.005 * window, 0.015 * window, 0.41666666, 0.5714285};
            entries.push_back(std::move(entry));
        }
        auto layout = testing::layout("Layout " + std::to_string(i), std::move(entries));
        layout.profileID = profileIDs_[static_cast<std::size_t>(i) % profileIDs_.size()];
        layout.savedDisplays.emplace().push_back(
            {.displayIdentifier = "4268-16642-808661580", .visibleFrame = {0, 0, 1920, 1050}});
        return layout;
    }

private:
    PosixFileSystem files_;
    SystemWallClock clock_;
    std::string directory_;
    std::unique_ptr<AppSupportPaths> paths_;
    std::unique_ptr<ProfileStore> store_;
    std::vector<Uuid> profileIDs_;
};

/// Filled once: filling takes as long as two hundred saves.
FullStore& fullStore() {
    static FullStore disk;
    return disk;
}

MenuModel menuOf(ProfileStore& store) {
    const auto setups = store.load().value();
    const auto matched = setups.profiles().front();
    return statusItemMenu({.permission = AccessibilityPermissionState::granted,
                           .currentProfileName = matched.name,
                           .matchedProfile = matched,
                           .setups = setups,
                           .version = "1.0"});
}

void menuAtFirst(benchmark::State& state) {
    FullStore& disk = fullStore();
    for (auto _ : state)
        benchmark::DoNotOptimize(menuOf(*disk.fresh()));
}

void menuAgain(benchmark::State& state) {
    FullStore& disk = fullStore();
    static_cast<void>(menuOf(disk.store()));
    for (auto _ : state)
        benchmark::DoNotOptimize(menuOf(disk.store()));
}

void decodeLayouts(benchmark::State& state) {
    const auto bytes = fullStore().layoutBytes();
    for (auto _ : state)
        benchmark::DoNotOptimize(StoreMigration{}.decode<std::vector<SavedLayout>>(bytes));
    state.counters["bytes"] = static_cast<double>(bytes.size());
}

/// What the JSON library takes for the same bytes before anybody looks at a value.
void parseBare(benchmark::State& state) {
    const auto bytes = fullStore().layoutBytes();
    for (auto _ : state) {
        simdjson::dom::parser parser;
        benchmark::DoNotOptimize(parser.parse(bytes).error());
    }
}

void encodeLayouts(benchmark::State& state) {
    const auto layouts = fullStore().store().loadLayouts().value();
    for (auto _ : state)
        benchmark::DoNotOptimize(StoreMigration{}.encode(layouts, Timestamp{}));
}

/// What the disk takes of a save: the same bytes, with all flushing.
void writeBare(benchmark::State& state) {
    FullStore& disk = fullStore();
    const auto layouts = disk.layoutBytes(), profiles = disk.profileBytes();
    const auto lock = disk.paths().lock();
    for (auto _ : state) {
        auto newLayouts = disk.paths().stage(disk.paths().layoutsFile(), layouts);
        auto newProfiles = disk.paths().stage(disk.paths().profilesFile(), profiles);
        if (!newLayouts || !newProfiles || !newLayouts->publish() || !newProfiles->publish())
            state.SkipWithError("not written");
    }
}

void menuAfterSave(benchmark::State& state) {
    FullStore& disk = fullStore();
    for (auto _ : state) {
        state.PauseTiming();
        static_cast<void>(disk.store().renameLayout(disk.store().loadLayouts()->front().id, "Renamed"));
        state.ResumeTiming();
        benchmark::DoNotOptimize(menuOf(disk.store()));
    }
}

void saveLayout(benchmark::State& state) {
    FullStore& disk = fullStore();
    int i = layoutCount;
    for (auto _ : state) {
        const auto layout = disk.newLayout(i++);
        if (!disk.store().saveLayout(layout))
            state.SkipWithError("not saved");
        state.PauseTiming();
        static_cast<void>(disk.store().deleteLayout(layout.id));
        state.ResumeTiming();
    }
}

BENCHMARK(menuAtFirst)->Unit(benchmark::kMillisecond);
BENCHMARK(menuAgain)->Unit(benchmark::kMillisecond);
BENCHMARK(menuAfterSave)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeLayouts)->Unit(benchmark::kMillisecond);
BENCHMARK(parseBare)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeLayouts)->Unit(benchmark::kMillisecond);
BENCHMARK(saveLayout)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(writeBare)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
