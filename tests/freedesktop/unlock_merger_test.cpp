#include "platform/freedesktop/unlock_merger.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace tavrin {
namespace {

constexpr auto hint = LockSource::sessionHint;
constexpr auto gnome = LockSource::gnomeScreenSaver;
constexpr auto xfce = LockSource::xfceScreenSaver;

struct Step {
    LockSource source;
    std::optional<int> unlocked = {}; ///< at this time in milliseconds; absent for a lock
};

TEST(UnlockMergerTest, oneUnlockCountsOnce) {
    const struct {
        const char* situation;
        std::vector<Step> steps;
        std::vector<int> counted; ///< the times of the unlocks that count
    } cases[] = {
        {"one source", {{gnome}, {gnome, 9000}}, {9000}},
        {"a source that tells of unlocks only", {{hint, 0}, {hint, 9000}}, {0, 9000}},
        {"two sources", {{gnome}, {hint}, {hint, 9000}, {gnome, 9010}}, {9000}},
        {"late only once", {{gnome}, {hint}, {hint, 9000}, {gnome, 30000}, {gnome, 40000}}, {9000, 40000}},
        {"the other never told of the lock", {{gnome}, {gnome, 9000}, {xfce, 9010}}, {9000}},
        {"within the window and after it", {{gnome, 0}, {xfce, 1999}, {hint, 2000}}, {0, 2000}},
        {"a lock told after its end", {{gnome}, {gnome, 900}, {hint}, {hint, 960}}, {900}},
        {"locked again before the late one",
         {{gnome}, {hint}, {hint, 5000}, {hint}, {gnome, 9000}, {hint, 9010}},
         {5000, 9000}},
        {"twice in a row",
         {{gnome}, {hint}, {hint, 5000}, {gnome, 5001}, {gnome}, {hint}, {gnome, 9000}, {hint, 9001}},
         {5000, 9000}},
    };
    for (const auto& [situation, steps, counted] : cases) {
        UnlockMerger merger;
        std::vector<int> found;
        for (const auto& [source, time] : steps)
            if (!time)
                merger.locked(source);
            else if (merger.unlocked(source, UnlockMerger::TimePoint() + std::chrono::milliseconds(*time)))
                found.push_back(*time);
        EXPECT_EQ(found, counted) << situation;
    }
}

} // namespace
} // namespace tavrin
