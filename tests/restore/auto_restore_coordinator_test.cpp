#include "doubles/builders.h"
#include "doubles/stored_data.h"
#include "restore/auto_restore_coordinator.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

const RestoreResult complete(1, 1, 0, {}), partial(2, 1, 1, {}, 1, 0);

class AutoRestoreTest : public ::testing::Test, protected testing::StoredData {
protected:
    testing::ScriptedRestores restores;
    testing::FakeEvents events;
    RestoreDebugStore debugStore;
    std::vector<RestoreResult> feedback;
    AutoRestoreCoordinator coordinator{
        {settings, store, restores, displays, &debugStore, events, time, time}};
    SavedLayout work = testing::layout("Work", {});

    void SetUp() override {
        displays.snapshot = testing::desk();
        work.profileID =
            store.createProfile("Desk", testing::profile("", testing::desk()).displayFingerprint)->id;
        ASSERT_TRUE(store.saveLayout(work));
        ASSERT_TRUE(store.setDefaultLayout(work.profileID, work.id));
        restores.results = {complete};
        coordinator.onFeedback = [this](const RestoreResult& result) { feedback.push_back(result); };
        coordinator.start();
    }

    void plug() { events.emit(SystemEvent::screenParametersChanged); }
    std::size_t restoreCount() const { return restores.restored.size(); }
};

TEST_F(AutoRestoreTest, TurnsABurstIntoOneRestoreAfterTheLastEvent) {
    for (int i = 0; i < 3; ++i) {
        plug();
        time.pass(0.2);
    }
    displays.snapshot = testing::leftAlone();
    time.pass(0.29);
    displays.snapshot = testing::desk(); // looked at half a second after the last event, and not later
    time.pass(0.02);
    displays.snapshot = testing::leftAlone();
    time.pass(1.98);
    EXPECT_EQ(restoreCount(), 0u) << "0.5 and 2 seconds after the last event";
    time.pass(0.02);
    EXPECT_EQ(restoreCount(), 1u);
    time.pass(60);
    EXPECT_EQ(restoreCount(), 1u);
    EXPECT_EQ(feedback, std::vector{complete});
    EXPECT_EQ(debugStore.lastAttempt.value(),
              (RestoreAttemptDiagnostics{time.now() - std::chrono::seconds{60},
                                         RestoreTriggerSource::automation, "Work", work.kind, complete}));
}

TEST_F(AutoRestoreTest, RetriesForABoundedTimeAndReportsOnce) {
    const RestoreResult last(2, 0, 2, {"last"});
    restores.results = {partial, partial, partial, partial, last};
    plug();
    time.pass(0.5 + 2.0 + 4 * 2.0 - 0.01);
    EXPECT_EQ(restoreCount(), 4u);
    EXPECT_TRUE(feedback.empty());
    time.pass(60);
    EXPECT_EQ(restoreCount(), 5u);
    EXPECT_EQ(feedback, std::vector{last});

    restores.restored.clear();
    restores.results = {partial, complete};
    plug();
    time.pass(60);
    EXPECT_EQ(restoreCount(), 2u);
}

TEST_F(AutoRestoreTest, ObeysTheSettingOfEachEventAsItIsThen) {
    const auto restoresAfter = [&](SystemEvent event, AppSettings current) {
        EXPECT_TRUE(settings.save(current));
        restores.restored.clear();
        events.emit(event);
        time.pass(60);
        return restoreCount();
    };
    const AppSettings none{.autoRestoreOnConnect = false, .autoRestoreOnDisconnect = false};
    AppSettings connect = none, disconnect = none, wake = none, unlock = none;
    connect.autoRestoreOnConnect = disconnect.autoRestoreOnDisconnect = true;
    wake.autoRestoreOnWake = unlock.autoRestoreOnUnlockLogin = true;
    EXPECT_EQ(restoresAfter(SystemEvent::screenParametersChanged, none), 0u);
    EXPECT_EQ(restoresAfter(SystemEvent::screenParametersChanged, connect), 1u);
    EXPECT_EQ(restoresAfter(SystemEvent::screenParametersChanged, disconnect), 1u);
    EXPECT_EQ(restoresAfter(SystemEvent::didWake, connect), 0u);
    EXPECT_EQ(restoresAfter(SystemEvent::didWake, wake), 1u);
    EXPECT_EQ(restoresAfter(SystemEvent::screenIsUnlocked, wake), 0u);
    EXPECT_EQ(restoresAfter(SystemEvent::screenIsUnlocked, unlock), 1u);
    files.files["/data/settings.json"] = "broken";
    restores.restored.clear();
    plug();
    time.pass(60);
    EXPECT_EQ(restoreCount(), 0u) << "unreadable settings allow nothing";
}

TEST_F(AutoRestoreTest, StopsInTheMiddleAndStartsOnce) {
    coordinator.start();
    restores.results = {partial};
    plug();
    time.pass(3);
    EXPECT_EQ(restoreCount(), 1u) << "observed once";
    coordinator.stop();
    plug();
    time.pass(60);
    EXPECT_EQ(restoreCount(), 1u);
    EXPECT_TRUE(feedback.empty());
    coordinator.start();
    plug();
    time.pass(3);
    plug();
    time.pass(60);
    EXPECT_EQ(feedback.size(), 1u) << "a sequence that a new event replaces reports nothing";
}

TEST_F(AutoRestoreTest, RestoresSuggestedSetupsButNothingUncertain) {
    const auto restored = [&] {
        restores.restored.clear();
        plug();
        time.pass(60);
        return restoreCount();
    };
    displays.snapshot.displays[0].stableID = "another unit";
    EXPECT_EQ(restored(), 1u) << "suggested";
    ASSERT_TRUE(store.setDefaultLayout(work.profileID, Uuid::random()));
    EXPECT_EQ(restored(), 0u) << "the default layout is gone";
    ASSERT_TRUE(store.setDefaultLayout(work.profileID, std::nullopt));
    EXPECT_EQ(restored(), 0u) << "no default layout";
    ASSERT_TRUE(store.setDefaultLayout(work.profileID, work.id));
    const auto twin = testing::profile("Twin", testing::desk()).displayFingerprint;
    ASSERT_TRUE(store.createProfile("Twin", twin));
    EXPECT_EQ(restored(), 0u) << "ambiguous";
    displays.snapshot = testing::leftAlone();
    EXPECT_EQ(restored(), 0u) << "no match";
    files.files["/data/profiles.json"] = "broken";
    EXPECT_EQ(restored(), 0u) << "unreadable";
}

} // namespace
} // namespace tavrin
