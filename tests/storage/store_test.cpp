#include "base/text.h"
#include "doubles/builders.h"
#include "doubles/fake_file_system.h"
#include "doubles/fake_time.h"
#include "storage/profile_store.h"
#include "storage/settings_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>

namespace tavrin {
namespace {

using testing::FakeFileSystem;

const Uuid unknownID = *Uuid::parse("00000000-0000-4000-8000-000000000000");

class StoreTest : public ::testing::Test {
protected:
    FakeFileSystem files;
    testing::FakeTime time;
    AppSupportPaths paths{files, "/data/Tavrin"};
    ProfileStore store{paths, time};
    SettingsStore settingsStore{paths, time};

    MonitorProfile newProfile(std::string name = "Desk") { return store.createProfile(name, {}).value(); }

    SavedLayout newLayout(const MonitorProfile& profile, std::string name = "Work") {
        SavedLayout layout = testing::layout(name, {});
        layout.profileID = profile.id;
        EXPECT_TRUE(store.saveLayout(layout));
        return layout;
    }

    MonitorProfile stored(const Uuid& profileID) { return *store.load()->profile(profileID); }

    std::vector<SavedLayout> layoutsOf(const Uuid& profileID) {
        const auto setups = store.load().value();
        auto layouts = setups.layoutsOf(profileID);
        return {layouts.begin(), layouts.end()};
    }
};

template <class Result>
void expectError(const Result& result, const StoreError& error, const char* what) {
    ASSERT_FALSE(result) << what;
    EXPECT_EQ(result.error(), error) << what;
}

TEST_F(StoreTest, ReadsNothingAsEmptyAndCreatesNothing) {
    EXPECT_EQ(store.loadProfiles(), std::vector<MonitorProfile>{});
    EXPECT_EQ(store.loadLayouts(), std::vector<SavedLayout>{});
    EXPECT_EQ(settingsStore.load(), AppSettings{});
    EXPECT_TRUE(files.directories.empty());
    newProfile();
    EXPECT_TRUE(files.directories.contains("/data/Tavrin"));
}

TEST_F(StoreTest, KeepsProfilesAndLayoutsTogether) {
    time.pass(0.5); // files hold whole seconds
    const auto desk = newProfile(" Desk\n");
    EXPECT_EQ(desk, stored(desk.id));
    EXPECT_EQ(desk.name, "Desk");
    EXPECT_EQ(desk.createdAt, time.now());
    const auto other = newProfile("Other");
    const auto work = newLayout(desk);
    const auto play = newLayout(desk, "Play");
    const auto rest = newLayout(other, "Rest");
    time.pass(60);
    ASSERT_TRUE(store.setDefaultLayout(desk.id, work.id));
    EXPECT_EQ(stored(desk.id).layoutIDs, (std::vector{work.id, play.id}));
    EXPECT_EQ(stored(desk.id).updatedAt, time.now());
    EXPECT_EQ(layoutsOf(desk.id).size(), 2u);

    ASSERT_TRUE(store.renameLayout(play.id, " Games "));
    EXPECT_EQ(layoutsOf(desk.id).back().name, "Games");
    EXPECT_EQ(layoutsOf(desk.id).back().updatedAt, time.now());
    ASSERT_TRUE(store.replaceLayout(play.id, SavedLayoutKind::generic, {}, std::vector{SavedDisplay{"new"}}));
    EXPECT_EQ(layoutsOf(desk.id).back().savedDisplays, std::vector{SavedDisplay{"new"}});
    EXPECT_EQ(layoutsOf(desk.id).back().kind, SavedLayoutKind::generic);
    EXPECT_EQ(layoutsOf(desk.id).back().name, "Games");

    const auto twin = play;
    ASSERT_TRUE(store.saveLayout(twin));
    ASSERT_TRUE(store.deleteLayout(play.id));
    EXPECT_EQ(stored(desk.id).defaultLayoutID, work.id);
    EXPECT_EQ(stored(desk.id).layoutIDs, std::vector{work.id});
    EXPECT_EQ(layoutsOf(desk.id).size(), 1u);
    ASSERT_TRUE(store.deleteLayout(work.id));
    EXPECT_EQ(stored(desk.id).defaultLayoutID, std::nullopt);
    ASSERT_TRUE(store.deleteProfile(desk.id));
    EXPECT_EQ(store.loadProfiles()->size(), 1u);
    EXPECT_EQ(store.loadLayouts(), std::vector{rest});
}

TEST_F(StoreTest, RemembersASignatureOncePerProfileLatestLast) {
    const auto desk = newProfile();
    for (const char* signature : {"a", "b", "a"}) {
        time.pass(1);
        ASSERT_TRUE(store.learnAssociation(desk.id, signature, "similar"));
    }
    const auto learned = stored(desk.id).learnedAssociations;
    ASSERT_EQ(learned.size(), 2u);
    EXPECT_EQ(learned[0].confirmedDisplaySignature, "b");
    EXPECT_EQ(learned[1].confirmedDisplaySignature, "a");
    EXPECT_EQ(learned[1].confirmedAt, time.now());
    EXPECT_EQ(learned[1].profileID, desk.id);
}

TEST_F(StoreTest, RefusesWhatIsUnknownOrBlankAndWritesNothing) {
    const auto desk = newProfile();
    const auto work = newLayout(desk);
    const auto before = files.files;
    const ProfileStoreError noProfile = ProfileNotFound{unknownID}, noLayout = LayoutNotFound{unknownID},
                            noProfileName = EmptyProfileName{}, noLayoutName = EmptyLayoutName{};
    SavedLayout orphan = work;
    orphan.profileID = unknownID;

    expectError(store.createProfile(" \n", {}), noProfileName, "create");
    expectError(store.renameProfile(desk.id, " "), noProfileName, "rename blank");
    expectError(store.renameProfile(unknownID, "x"), noProfile, "rename unknown");
    expectError(store.deleteProfile(unknownID), noProfile, "delete");
    expectError(store.learnAssociation(unknownID, "s", "e"), noProfile, "learn");
    expectError(store.saveLayout(orphan), noProfile, "save");
    expectError(store.setDefaultLayout(unknownID, {}), noProfile, "default");
    expectError(store.renameLayout(work.id, "\t"), noLayoutName, "rename layout blank");
    expectError(store.renameLayout(unknownID, "x"), noLayout, "rename layout unknown");
    expectError(store.deleteLayout(unknownID), noLayout, "delete layout");
    expectError(store.replaceLayout(unknownID, {}, {}, {}), noLayout, "replace layout");
    EXPECT_EQ(files.files, before);
}

TEST_F(StoreTest, NeverOverwritesAFileItCannotReadAndSaysWhichAndWhy) {
    const auto desk = newProfile();
    const auto work = newLayout(desk);
    const std::string newer = R"({"schemaVersion": 2, "updatedAt": "2026-01-01T00:00:00Z", "payload": []})";
    for (const std::string file : {"profiles.json", "layouts.json"}) {
        const auto good = files.files;
        for (const std::string& content : {newer, std::string("{"), std::string()}) {
            files.files["/data/Tavrin/" + file] = content;
            const auto before = files.files;
            const auto saved = store.saveLayout(work);
            ASSERT_FALSE(saved);
            EXPECT_EQ(std::get<UnreadableFile>(saved.error()).file, "/data/Tavrin/" + file);
            EXPECT_EQ(std::get<UnreadableFile>(saved.error()).reason().find("another version") !=
                          std::string::npos,
                      content == newer);
            EXPECT_FALSE(store.deleteProfile(desk.id));
            EXPECT_FALSE(store.deleteLayout(work.id));
            EXPECT_EQ(files.files, before) << file << " holding " << content;
        }
        files.files = good;
    }
    files.files["/data/Tavrin/settings.json"] = newer;
    EXPECT_FALSE(settingsStore.change([](AppSettings&) {}, SettingsStore::Unreadable::refuse));
    EXPECT_EQ(files.files["/data/Tavrin/settings.json"], newer);
}

TEST_F(StoreTest, SetsAsideWhatItCannotReadAndStartsFresh) {
    newLayout(newProfile());
    EXPECT_EQ(store.setAsideUnreadableFiles(), std::vector<std::filesystem::path>{});
    const auto profiles = files.files["/data/Tavrin/profiles.json"];
    for (const std::string content : {"first", "second"}) {
        files.files["/data/Tavrin/layouts.json"] = content;
        ASSERT_EQ(store.unreadableFiles().size(), 1u);
        ASSERT_EQ(store.setAsideUnreadableFiles()->size(), 1u);
        EXPECT_TRUE(store.unreadableFiles().empty());
    }
    EXPECT_EQ(files.files, (std::map<std::string, std::string>{
                               {"/data/Tavrin/profiles.json", profiles},
                               {"/data/Tavrin/layouts.json.unreadable-2027-01-15", "first"},
                               {"/data/Tavrin/layouts.json.unreadable-2027-01-15-2", "second"}}));

    files.files = {{"/data/Tavrin/settings.json", "broken"}};
    const auto changed = settingsStore.change([](AppSettings& settings) { settings.launchAtLogin = true; });
    EXPECT_EQ(changed, AppSettings{.launchAtLogin = true});
    EXPECT_EQ(settingsStore.load(), changed);
    EXPECT_EQ(files.files["/data/Tavrin/settings.json.unreadable-2027-01-15"], "broken");
}

TEST_F(StoreTest, LeavesTheOldFileWhenAnyStepOfWritingFails) {
    newProfile("Old");
    const auto before = files.files;
    for (const char* step : {"createDirectories", "lock", "writeFlushed", "rename"}) {
        files.failing = {step};
        const auto created = store.createProfile("New", {});
        ASSERT_FALSE(created) << step;
        EXPECT_EQ(std::get<FileError>(created.error()).operation, step);
        EXPECT_EQ(files.files, before) << step << " must leave nothing behind";
    }
    files.failing = {};
    const auto work = newLayout(store.loadProfiles()->at(0));
    const auto both = files.files;
    files.failing = {".profiles.json"}; // the disk is full at the second file
    EXPECT_FALSE(store.deleteLayout(work.id));
    EXPECT_EQ(files.files, both);
}

TEST_F(StoreTest, AFailureToFlushTheDirectoryDoesNotSeparateALayoutFromItsProfile) {
    const auto desk = newProfile();
    files.failing = {"flushDirectory"};
    const auto work = newLayout(desk);
    EXPECT_EQ(stored(desk.id).layoutIDs, std::vector{work.id});
}

TEST_F(StoreTest, LocksThenWritesBesideTheFileRenamesAndFlushesAndLayoutsBeforeProfiles) {
    const auto desk = newProfile();
    files.log.clear();
    files.links["/data/Tavrin/layouts.json"] = "/elsewhere/mine.json";
    files.files["/elsewhere/.mine.json.left-by-a-crash.tmp"] = "half";
    newLayout(desk);
    newLayout(desk);
    std::set<std::string> temporaries;
    for (std::string& line : files.log)
        if (line.starts_with("write")) {
            temporaries.insert(line);
            line = std::regex_replace(line, std::regex("[0-9A-F-]{36}"), "*");
        }
    EXPECT_EQ(temporaries.size(), 4u) << "every write has a name of its own";
    EXPECT_EQ(
        std::vector(files.log.begin(), files.log.begin() + 9),
        (std::vector<std::string>{
            "lock", "remove /elsewhere/.mine.json.left-by-a-crash.tmp", "write /elsewhere/.mine.json.*.tmp",
            "write /data/Tavrin/.profiles.json.*.tmp", "rename /elsewhere/mine.json", "flush /elsewhere",
            "rename /data/Tavrin/profiles.json", "flush /data/Tavrin", "unlock"}));
}

TEST_F(StoreTest, RefusesToWriteWhatAFileCannotExpress) {
    const auto desk = newProfile();
    auto layout = testing::layout("Work", {testing::entry("xterm", "t", {std::nan(""), 0, 1, 1})});
    layout.profileID = desk.id;
    const auto before = files.files;
    const auto saved = store.saveLayout(layout);
    ASSERT_FALSE(saved);
    EXPECT_TRUE(std::holds_alternative<EncodeFailed>(saved.error()));
    EXPECT_FALSE(store.createProfile("\xff", {}));
    EXPECT_EQ(files.files, before);
}

} // namespace
} // namespace tavrin
