#include "doubles/builders.h"
#include "doubles/fake_time.h"
#include "records/app_settings.h"
#include "storage/store_migration.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>

namespace tavrin {
namespace {

std::string envelope(std::string_view payload, std::string_view version = "1",
                     std::string_view date = "2026-03-01T09:30:00Z") {
    return "{\"payload\": " + std::string(payload) + ", \"schemaVersion\": " + std::string(version) +
           ", \"updatedAt\": \"" + std::string(date) + "\"}";
}

template <class Payload>
std::expected<Payload, StoreMigrationError> decode(const std::string& payload) {
    return StoreMigration{}.decode<Payload>(envelope(payload));
}

template <class Payload>
bool isRefused(const std::string& bytes) {
    const auto decoded = StoreMigration{}.decode<Payload>(bytes);
    return !decoded && std::holds_alternative<DecodeFailed>(decoded.error());
}

TEST(StoreMigration, RefusesOtherVersionsAndWhatIsNoEnvelope) {
    using Layouts = std::vector<SavedLayout>;
    for (const auto& [version, found] : {std::pair{"2", 2}, {"0", 0}, {"-1", -1}}) {
        const auto decoded = StoreMigration{}.decode<Layouts>(envelope("[]", version));
        ASSERT_FALSE(decoded);
        EXPECT_EQ(decoded.error(), StoreMigrationError(UnsupportedVersion{found}));
    }
    EXPECT_TRUE(StoreMigration{}.decode<Layouts>(envelope("[]")));
    for (const std::string& bytes :
         {std::string(""), std::string("[]"), std::string("null"), std::string("{}"), envelope("[]", "1.5"),
          envelope("[]", "1.0"), envelope("[]", "true"), envelope("[]", "\"1\""),
          envelope("[]", "99999999999999999999"), envelope("{}"), envelope("null"),
          envelope("[]", "1", "yesterday"), envelope("[1]", "2"), envelope("[]") + "x",
          std::string("{\"payload\": [], \"schemaVersion\": 1}"), "\xef\xbb" + envelope("[]"),
          std::string(100'000, '[')})
        EXPECT_TRUE(isRefused<Layouts>(bytes)) << bytes.substr(0, 100);
}

TEST(StoreMigration, SaysWhereAFileIsBroken) {
    const auto decoded = decode<std::vector<SavedDisplay>>(
        R"([{"displayIdentifier": "a", "isInternal": 1, "visibleFrame": {"x": 0, "y": 0, "width": 1, "height": 1}}])");
    ASSERT_FALSE(decoded);
    EXPECT_EQ(std::get<DecodeFailed>(decoded.error()).description,
              "payload[0].isInternal: expected true or false");
}

TEST(StoreMigration, ReadsEntriesThatLackOptionalKeysOrHoldNull) {
    const std::string required = R"("id": "0F9A2B3C-4D5E-6F70-8192-A3B4C5D6E7F8",
        "frame": {"x": 1, "y": 2.5, "width": 3, "height": 4})";
    const auto bare = decode<SavedLayoutEntry>("{" + required + ", \"unknown\": [1]}");
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->frame, (Rect{1, 2.5, 3, 4}));
    EXPECT_FALSE(bare->bundleIdentifier || bare->normalizedFrame || bare->slotIndex);
    EXPECT_EQ(decode<SavedLayoutEntry>("{" + required + R"(, "slotIndex": null, "appName": null})"), bare);
    EXPECT_EQ(decode<SavedLayoutEntry>("{" + required + R"(, "slotIndex": 0})")->slotIndex, 0);
    for (const char* broken : {R"(, "slotIndex": 1.5)", R"(, "slotIndex": "1")", R"(, "appName": 7)",
                               R"(, "normalizedFrame": {"x": 0})", R"(, "slotIndex": 9223372036854775808)"})
        EXPECT_TRUE(isRefused<SavedLayoutEntry>(envelope("{" + required + broken + "}"))) << broken;
    EXPECT_TRUE(isRefused<SavedLayoutEntry>(envelope(R"({"id": "0F9A2B3C-4D5E-6F70-8192-A3B4C5D6E7F8"})")));
}

TEST(StoreMigration, TellsLayoutKindsByTheirExactText) {
    const std::string rest = R"("id": "0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7f8", "name": "n", "entries": [],
        "profileID": "0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7f8", "createdAt": "2026-03-01T09:30:00Z",
        "updatedAt": "2026-03-01T09:30:00Z", "kind": )";
    EXPECT_EQ(decode<SavedLayout>("{" + rest + "\"generic\"}")->kind, SavedLayoutKind::generic);
    EXPECT_EQ(decode<SavedLayout>("{" + rest + "\"appSpecific\"}")->kind, SavedLayoutKind::appSpecific);
    EXPECT_TRUE(isRefused<SavedLayout>(envelope("{" + rest + "\"AppSpecific\"}")));
}

TEST(StoreMigration, ReadsProfilesWithoutADefaultButNotWithoutTheirLists) {
    const std::string common = R"("id": "0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7f8", "name": "Desk",
        "createdAt": "2026-03-01T09:30:00Z", "updatedAt": "2026-03-01T09:30:00Z", "displayFingerprint":
        {"arrangementSignature": "k", "displayCount": 2, "stableDisplayIDs": ["1-2-0", "1-2-0"]})";
    const auto profile =
        decode<MonitorProfile>("{" + common + R"(, "layoutIDs": [], "learnedAssociations": []})");
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->defaultLayoutID, std::nullopt);
    EXPECT_EQ(profile->displayFingerprint, (DisplayFingerprint{{"1-2-0", "1-2-0"}, "k", 2}));
    EXPECT_TRUE(isRefused<MonitorProfile>(envelope("{" + common + R"(, "layoutIDs": []})")));
    EXPECT_TRUE(isRefused<MonitorProfile>(envelope("{" + common + R"(, "learnedAssociations": []})")));
}

TEST(StoreMigration, SettingsMustSayWhatHappensAutomatically) {
    const std::string triggers = R"("autoRestoreOnConnect": false, "autoRestoreOnDisconnect": false,
        "autoRestoreOnUnlockLogin": true)";
    const auto settings = decode<AppSettings>("{" + triggers + R"(, "autoRestoreOnWake": true})");
    ASSERT_TRUE(settings);
    EXPECT_TRUE(settings->clusterExtraAppWindows && !settings->launchAtLogin);
    EXPECT_EQ(*settings, (AppSettings{.autoRestoreOnConnect = false,
                                      .autoRestoreOnDisconnect = false,
                                      .autoRestoreOnWake = true,
                                      .autoRestoreOnUnlockLogin = true}));
    EXPECT_EQ(
        decode<AppSettings>("{" + triggers + R"(, "autoRestoreOnWake": true, "clusterExtraAppWindows": null,
        "layoutShortcuts": null, "autoDetectShortcut": null})"),
        settings);
    EXPECT_TRUE(isRefused<AppSettings>(envelope("{" + triggers + R"(, "autoRestoreOnWake": null})")));
    EXPECT_TRUE(isRefused<AppSettings>(envelope("{" + triggers + "}")));
    EXPECT_TRUE(isRefused<AppSettings>(envelope("{" + triggers + R"(, "autoRestoreOnWake": 1})")));
    for (const char* combo : {R"({"keyCode": 65536, "modifiers": 0})", R"({"keyCode": -1, "modifiers": 0})",
                              R"({"keyCode": 1})", R"({"keyCode": 1, "modifiers": -1})"})
        EXPECT_TRUE(isRefused<AppSettings>(envelope("{" + triggers + R"(, "autoRestoreOnWake": true,
            "autoDetectShortcut": )" + combo + "}")))
            << combo;
}

TEST(StoreMigration, WritesKeysInAlphabeticalOrderAndNoAbsentOnes) {
    const auto bytes =
        StoreMigration{}.encode(std::vector{SavedDisplay{"d", {1, 2, 3, 4}, true}}, testing::at(0));
    EXPECT_EQ(bytes, R"({
  "payload": [
    {
      "displayIdentifier": "d",
      "isInternal": true,
      "visibleFrame": {
        "height": 4.0,
        "width": 3.0,
        "x": 1.0,
        "y": 2.0
      }
    }
  ],
  "schemaVersion": 1,
  "updatedAt": "1970-01-01T00:00:00Z"
}
)");
    EXPECT_EQ(StoreMigration{}.encode(AppSettings{}, testing::at(0))->find("autoDetectShortcut"),
              std::string::npos);
    EXPECT_NE(StoreMigration{}.encode(AppSettings{}, testing::at(0))->find("excludedBundleIDs"),
              std::string::npos);
}

rc::Gen<double> finiteNumber() {
    return rc::gen::suchThat(rc::gen::arbitrary<double>(), [](double value) { return std::isfinite(value); });
}

rc::Gen<Rect> anyFrame() {
    return rc::gen::construct<Rect>(finiteNumber(), finiteNumber(), finiteNumber(), finiteNumber());
}

TEST(StoreMigration, EncodingWhatWasDecodedGivesTheSameBytes) {
    EXPECT_TRUE(rc::check([] {
        const auto name = *rc::gen::container<std::string>(rc::gen::inRange<char>(0, 127));
        SavedLayout layout = testing::layout(name, {});
        for (int i = 0; i < *rc::gen::inRange(0, 4); ++i) {
            auto entry = testing::entry("app", "title", *anyFrame());
            if (*rc::gen::arbitrary<bool>())
                entry.normalizedFrame = *anyFrame();
            if (*rc::gen::arbitrary<bool>())
                entry.slotIndex = *rc::gen::arbitrary<std::int64_t>();
            layout.entries.push_back(entry);
        }
        const auto once = StoreMigration{}.encode(std::vector{layout}, testing::at(1));
        RC_ASSERT(once.has_value());
        const auto decoded = StoreMigration{}.decode<std::vector<SavedLayout>>(*once);
        RC_ASSERT(decoded.has_value());
        RC_ASSERT(decoded->front().entries == layout.entries);
        RC_ASSERT(StoreMigration{}.encode(*decoded, testing::at(1)).value() == once.value());
    }));
}

} // namespace
} // namespace tavrin
