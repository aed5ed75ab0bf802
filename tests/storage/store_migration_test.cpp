#include "doubles/builders.h"
#include "doubles/fake_time.h"
#include "records/app_settings.h"
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
    for (const auto* version : {"1.5", "1.0", "true", "\"1\"", "99999999999999999999"})
        EXPECT_TRUE(isRefused<Layouts>(envelope("[]", version))) << version;
    for (const auto* bytes : {"", "[]", "null", "{}", R"({"payload": [], "schemaVersion": 1})"})
        EXPECT_TRUE(isRefused<Layouts>(bytes)) << bytes;
    const std::string deep = std::string(2000, '[') + std::string(2000, ']');
    for (const std::string& key : {R"("later": )" + deep, std::string(R"("schemaVersion": 1)"),
                                   std::string(R"("later": [nul])"), std::string("\"later\": \"\xff\"")})
        EXPECT_TRUE(isRefused<Layouts>(envelope("[]").insert(1, key + ", "))) << key.substr(0, 100);
    for (const std::string& bytes : {envelope("{}"), envelope("null"), envelope("[]", "1", "yesterday"),
                                     envelope("[1]", "2"), envelope("[]") + "x", "\xef\xbb" + envelope("[]"),
                                     envelope("[]") + std::string("\0x", 2), std::string(100'000, '[')})
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

TEST(StoreMigration, WritesNumbersAndTextsAsItAlwaysDidAndReadsThemBack) {
    const auto writeAndRead = [](const SavedDisplay& display, const std::string& expected) {
        const auto bytes = StoreMigration{}.encode(display, testing::at(0)).value();
        EXPECT_NE(bytes.find(expected), std::string::npos) << expected << " in " << bytes;
        EXPECT_EQ(StoreMigration{}.decode<SavedDisplay>(bytes), display);
    };
    for (const auto& [number, text] : {std::pair{-0.0, "-0.0"},
                                       {-10.5, "-10.5"},
                                       {1.0 / 3, "0.3333333333333333"},
                                       {2.357370772176133, "2.3573707721761328"}, // not the shortest
                                       {1e15, "1e+15"},
                                       {1e-4, "0.0001"},
                                       {-1.25e-7, "-1.25e-07"},
                                       {1e300, "1e+300"}})
        writeAndRead({"d", {0, 0, number, 0}, true}, std::string("\"width\": ") + text + ",");
    using namespace std::string_literals;
    for (const auto& [text, written] : {std::pair{"\"\\/ \b\f\n\r\t"s, R"(\"\\/ \b\f\n\r\t)"},
                                        {"\x01\x1f\x7f é…😀\0z"s, "\\u0001\\u001f\x7f é…😀\\u0000z"}})
        writeAndRead({text, {}, true}, std::string("\"displayIdentifier\": \"") + written + "\",");
}

template <class Record>
std::string keys() {
    return std::apply([](const auto&... fields) { return ((std::string(fields.key) + " ") + ...); },
                      Record::fields());
}

TEST(StoreMigration, KeysAreThoseOfTheFilesThatExist) {
    EXPECT_EQ(keys<SavedLayout>(), "id profileID name kind entries savedDisplays createdAt updatedAt ");
    EXPECT_EQ(keys<SavedLayoutEntry>(), "id bundleIdentifier appName windowTitle windowRole windowSubrole "
                                        "displayIdentifier frame normalizedFrame slotIndex ");
    EXPECT_EQ(
        keys<MonitorProfile>(),
        "id name displayFingerprint learnedAssociations layoutIDs defaultLayoutID createdAt updatedAt ");
    EXPECT_EQ(keys<FuzzyProfileAssociation>(),
              "id confirmedDisplaySignature profileID explanation confirmedAt ");
    EXPECT_EQ(keys<AppSettings>(), "launchAtLogin autoRestoreOnConnect autoRestoreOnDisconnect "
                                   "autoRestoreOnWake autoRestoreOnUnlockLogin clusterExtraAppWindows "
                                   "autoDetectShortcut layoutShortcuts excludedBundleIDs ");
}

} // namespace
} // namespace tavrin
