#include "platform/freedesktop/unlock_merger.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavrin {
namespace {

constexpr auto hint = LockSource::sessionHint;
constexpr auto gnome = LockSource::gnomeScreenSaver;
constexpr auto xfce = LockSource::xfceScreenSaver;

struct Step {
    int milliseconds;
    LockSource source;
    enum { lock, unlock } what;
};

TEST(UnlockMergerTest, oneUnlockCountsOnce) {
    const struct {
        const char* situation;
        std::vector<Step> steps;
        std::vector<int> counted; ///< the times of the unlocks that count
    } cases[] = {
        {"one source", {{0, gnome, Step::lock}, {9000, gnome, Step::unlock}}, {9000}},
        {"a source that tells of unlocks only",
         {{0, hint, Step::unlock}, {9000, hint, Step::unlock}},
         {0, 9000}},
        {"two sources",
         {{0, gnome, Step::lock},
          {10, hint, Step::lock},
          {9000, hint, Step::unlock},
          {9010, gnome, Step::unlock}},
         {9000}},
        {"one of them very late",
         {{0, gnome, Step::lock},
          {10, hint, Step::lock},
          {9000, hint, Step::unlock},
          {30000, gnome, Step::unlock}},
         {9000}},
        {"late only once",
         {{0, gnome, Step::lock},
          {10, hint, Step::lock},
          {9000, hint, Step::unlock},
          {30000, gnome, Step::unlock},
          {40000, gnome, Step::unlock}},
         {9000, 40000}},
        {"the other never told of the lock",
         {{0, gnome, Step::lock}, {9000, gnome, Step::unlock}, {9010, xfce, Step::unlock}},
         {9000}},
        {"within the window and after it",
         {{0, gnome, Step::unlock}, {1999, xfce, Step::unlock}, {2000, hint, Step::unlock}},
         {0, 2000}},
        {"a lock told after its end",
         {{0, gnome, Step::lock},
          {900, gnome, Step::unlock},
          {950, hint, Step::lock},
          {960, hint, Step::unlock}},
         {900}},
        {"locked again before the late one",
         {{0, gnome, Step::lock},
          {0, hint, Step::lock},
          {5000, hint, Step::unlock},
          {8000, hint, Step::lock},
          {9000, gnome, Step::unlock},
          {9010, hint, Step::unlock}},
         {5000, 9000}},
        {"twice in a row",
         {{0, gnome, Step::lock},
          {0, hint, Step::lock},
          {5000, hint, Step::unlock},
          {5001, gnome, Step::unlock},
          {6000, gnome, Step::lock},
          {6000, hint, Step::lock},
          {9000, gnome, Step::unlock},
          {9001, hint, Step::unlock}},
         {5000, 9000}},
    };
    for (const auto& [situation, steps, counted] : cases) {
        UnlockMerger merger;
        std::vector<int> found;
        for (const auto& step : steps)
            if (step.what == Step::lock)
                merger.locked(step.source);
            else if (merger.unlocked(step.source, UnlockMerger::TimePoint() +
                                                      std::chrono::milliseconds(step.milliseconds)))
                found.push_back(step.milliseconds);
        EXPECT_EQ(found, counted) << situation;
    }
}

} // namespace
} // namespace tavrin
