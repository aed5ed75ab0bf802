#include "doubles/builders.h"
#include "doubles/fake_time.h"
#include "records/app_settings.h"
#include "storage/random_records.h"
#include "storage/store_migration.h"

#include <gtest/gtest.h>

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
    for (const std::string& bytes : {envelope("[]"), "\xef\xbb\xbf" + envelope("[]"),
                                     envelope("[]").insert(1, R"("later": [{"a": 1}], )")})
        EXPECT_TRUE(StoreMigration{}.decode<Layouts>(bytes)) << bytes;
    for (const std::string& bytes :
         {std::string(""),
          std::string("[]"),
          std::string("null"),
          std::string("{}"),
          envelope("[]", "1.5"),
          envelope("[]", "1.0"),
          envelope("[]", "true"),
          envelope("[]", "\"1\""),
          envelope("[]", "99999999999999999999"),
          envelope("{}"),
          envelope("null"),
          envelope("[]", "1", "yesterday"),
          envelope("[1]", "2"),
          envelope("[]") + "x",
          std::string("{\"payload\": [], \"schemaVersion\": 1}"),
          "\xef\xbb" + envelope("[]"),
          envelope("[]") + std::string("\0x", 2),
          std::string(100'000, '['),
          envelope("[]").insert(1, R"("later": )" + std::string(2000, '[') + std::string(2000, ']') + ", "),
          envelope("[]").insert(1, R"("schemaVersion": 1, )"),
          envelope("[]").insert(1, R"("later": [nul], )"),
          envelope("[]").insert(1, "\"later\": \"\xff\", ")})
        EXPECT_TRUE(isRefused<Layouts>(bytes)) << bytes.substr(0, 100);
}

TEST(StoreMigration, SaysWhereAFileIsBroken) {
    const auto decoded =
        decode<std::vector<SavedDisplay>>(R"([{"displayIdentifier": "a", "isInternal": true}])");
    ASSERT_FALSE(decoded);
    EXPECT_EQ(std::get<DecodeFailed>(decoded.error()).description,
              "payload[0].visibleFrame: the key is missing");
}

/// Every payload made of `required` and one of `broken` is refused.
template <class Payload>
void expectRefused(const std::string& required, std::initializer_list<const char*> broken) {
    for (const char* rest : broken)
        EXPECT_TRUE(isRefused<Payload>(envelope("{" + required + rest + "}"))) << rest;
}

TEST(StoreMigration, ReadsEntriesThatLackOptionalKeysOrHoldNull) {
    const std::string id = R"("id": "0F9A2B3C-4D5E-6F70-8192-A3B4C5D6E7F8")";
    const std::string required = id + R"(, "frame": {"x": 1, "y": 2.5, "width": 3, "height": 4})";
    const auto bare = decode<SavedLayoutEntry>("{" + required + ", \"unknown\": [1]}");
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->frame, (Rect{1, 2.5, 3, 4}));
    EXPECT_FALSE(bare->bundleIdentifier || bare->normalizedFrame || bare->slotIndex);
    EXPECT_EQ(decode<SavedLayoutEntry>("{" + required + R"(, "slotIndex": null, "appName": null})"), bare);
    EXPECT_EQ(decode<SavedLayoutEntry>("{" + required + R"(, "slotIndex": 0})")->slotIndex, 0);
    expectRefused<SavedLayoutEntry>(required, {R"(, "slotIndex": 1.5)", R"(, "slotIndex": "1")",
                                               R"(, "appName": 7)", R"(, "normalizedFrame": {"x": 0})",
                                               R"(, "slotIndex": 9223372036854775808)"});
    expectRefused<SavedLayoutEntry>(id, {"", R"(, "frame": null)"});
}

const std::string named = R"("id": "0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7f8", "name": "Desk",
    "createdAt": "2026-03-01T09:30:00Z", "updatedAt": "2026-03-01T09:30:00Z")";

TEST(StoreMigration, TellsLayoutKindsByTheirExactText) {
    const std::string rest =
        named + R"(, "entries": [], "profileID": "0f9a2b3c-4d5e-6f70-8192-a3b4c5d6e7f8", "kind": )";
    EXPECT_EQ(decode<SavedLayout>("{" + rest + "\"generic\"}")->kind, SavedLayoutKind::generic);
    EXPECT_EQ(decode<SavedLayout>("{" + rest + "\"appSpecific\"}")->kind, SavedLayoutKind::appSpecific);
    expectRefused<SavedLayout>(rest, {"\"AppSpecific\""});
}

TEST(StoreMigration, ReadsProfilesWithoutADefaultButNotWithoutTheirLists) {
    const std::string common = named + R"(, "displayFingerprint":
        {"arrangementSignature": "k", "displayCount": 2, "stableDisplayIDs": ["1-2-0", "1-2-0"]})";
    const auto profile =
        decode<MonitorProfile>("{" + common + R"(, "layoutIDs": [], "learnedAssociations": []})");
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->defaultLayoutID, std::nullopt);
    EXPECT_EQ(profile->displayFingerprint, (DisplayFingerprint{{"1-2-0", "1-2-0"}, "k", 2}));
    expectRefused<MonitorProfile>(common, {R"(, "layoutIDs": [])", R"(, "learnedAssociations": [])"});
}

TEST(StoreMigration, SettingsMustSayWhatHappensAutomatically) {
    const std::string triggers = R"("autoRestoreOnConnect": false, "autoRestoreOnDisconnect": false,
        "autoRestoreOnUnlockLogin": true)";
    const std::string required = triggers + R"(, "autoRestoreOnWake": true)";
    const auto settings = decode<AppSettings>("{" + required + "}");
    EXPECT_EQ(settings, (AppSettings{.autoRestoreOnConnect = false,
                                     .autoRestoreOnDisconnect = false,
                                     .autoRestoreOnWake = true,
                                     .autoRestoreOnUnlockLogin = true,
                                     .clusterExtraAppWindows = true}));
    EXPECT_EQ(decode<AppSettings>("{" + required + R"(, "clusterExtraAppWindows": null,
        "layoutShortcuts": null, "autoDetectShortcut": null})"),
              settings);
    expectRefused<AppSettings>(triggers,
                               {"", R"(, "autoRestoreOnWake": null)", R"(, "autoRestoreOnWake": 1)"});
    expectRefused<AppSettings>(required + R"(, "autoDetectShortcut": )",
                               {R"({"keyCode": 65536, "modifiers": 0})", R"({"keyCode": -1, "modifiers": 0})",
                                R"({"keyCode": 1})", R"({"keyCode": 1, "modifiers": -1})"});
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

/// FNV-1a over all bytes: a sample of many files in one number.
class Sample {
public:
    void add(std::string_view bytes) {
        for (const char byte : bytes)
            sum_ = (sum_ ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    }
    std::uint64_t sum() const { return sum_; }

private:
    std::uint64_t sum_ = 0xcbf29ce484222325;
};

TEST(StoreMigration, WritesTheBytesThatItAlwaysWroteAndReadsThemBack) {
    testing::RandomRecords records;
    Sample sample;
    const auto writeAndRead = [&]<class Payload>(const Payload& payload) {
        const auto bytes = StoreMigration{}.encode(payload, testing::at(0));
        ASSERT_TRUE(bytes);
        sample.add(*bytes);
        ASSERT_EQ(StoreMigration{}.decode<Payload>(*bytes), payload) << *bytes;
    };
    for (int i = 0; i < 500; ++i) {
        writeAndRead(records.make<std::vector<SavedLayout>>());
        writeAndRead(records.make<std::vector<MonitorProfile>>());
        writeAndRead(records.make<AppSettings>());
    }
    EXPECT_EQ(sample.sum(), 2035855802763837182u);
}

} // namespace
} // namespace tavrin
