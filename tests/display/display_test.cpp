#include "display/display_snapshot_provider.h"
#include "doubles/builders.h"
#include "doubles/stored_data.h"
#include "ui/current_profile_view_model.h"
#include "ui/profile_list_view_model.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::FixedScreens;

Screen screen(Rect frame, std::vector<DisplayHardware> hardware, double scale = 1) {
    return {
        .frame = frame, .visibleFrame = frame, .backingScaleFactor = scale, .hardware = std::move(hardware)};
}

std::vector<std::string> keys(const DisplaySnapshotCollection& displays) {
    std::vector<std::string> keys;
    for (const auto& display : displays.displays)
        keys.push_back(display.arrangementKey());
    return keys;
}

TEST(DisplaySnapshotProvider, DescribesEachScreenWithinTheWhole) {
    FixedScreens screens;
    DisplaySnapshotProvider provider{screens};
    EXPECT_TRUE(provider.currentSnapshot().displays.empty());

    screens.list = {screen({0, 0, 3024, 1964}, {{1234, 5678, 0, true, 3024, 1964}}, 2.0),
                    screen({3024, 0, 4536, 1964}, {{4321, 8765, 7, false, 5120, 2880}}, 1.5)};
    screens.list[0].visibleFrame = {0, 40, 3024, 1924};
    const auto snapshot = provider.currentSnapshot();
    EXPECT_EQ(keys(snapshot), (std::vector<std::string>{"external:0.400:0.000:0.600:1.000:2:5120x2880",
                                                        "internal:0.000:0.000:0.400:1.000:2:3024x1964"}));
    EXPECT_EQ(snapshot.displays[0].stableID, "4321-8765-7");
    EXPECT_EQ(snapshot.displays[1].stableID, "1234-5678-0");
    EXPECT_EQ(snapshot.displays[1].visibleFrame, (Rect{0, 40, 3024, 1924}));
    const auto fingerprint = MonitorProfileMatcher{}.makeFingerprint(snapshot);
    EXPECT_EQ(fingerprint.stableDisplayIDs, (std::vector<std::string>{"1234-5678-0", "4321-8765-7"}));
    EXPECT_EQ(fingerprint.arrangementSignature, "external:0.400:0.000:0.600:1.000:2:5120x2880|"
                                                "internal:0.000:0.000:0.400:1.000:2:3024x1964");
    EXPECT_EQ(defaultProfileName(snapshot), "2-Display Setup");
}

TEST(DisplaySnapshotProvider, KnowsAScreenOfSeveralOutputsByAllOfThem) {
    FixedScreens screens;
    const DisplayHardware panel{9, 1, 0, true, 1920, 1080}, projector{10, 2, 3, false, 1920, 1080};
    for (const auto& order : {std::vector{panel, projector}, std::vector{projector, panel}}) {
        screens.list = {screen({0, 0, 1920, 1080}, order)};
        const auto display = DisplaySnapshotProvider{screens}.currentSnapshot().displays.at(0);
        EXPECT_EQ(display.stableID, "10-2-3+9-1-0");
        EXPECT_EQ(display.arrangementKey(), "internal:0.000:0.000:1.000:1.000:1:1920x1080");
    }
}

TEST(DisplaySnapshotProvider, CopesWithScreensWithoutHardwareOrSize) {
    FixedScreens screens;
    screens.list = {screen({0, 0, 0, 0}, {})};
    const auto snapshot = DisplaySnapshotProvider{screens}.currentSnapshot();
    EXPECT_EQ(keys(snapshot), std::vector<std::string>{"external:0.000:0.000:1.000:1.000:1:unknown"});
    EXPECT_EQ(snapshot.displays[0].id(), snapshot.displays[0].arrangementKey());
    EXPECT_TRUE(MonitorProfileMatcher{}.makeFingerprint(snapshot).stableDisplayIDs.empty());
    EXPECT_EQ(defaultProfileName(snapshot), "External Display");
    EXPECT_EQ(defaultProfileName({}), "0-Display Setup");
}

TEST(DisplaySnapshotProvider, PlacesDisplaysOnAllSidesOfThePrimary) {
    FixedScreens screens;
    const std::vector<DisplayHardware> panel{{1, 1, 1, true, 900, 600}}, monitor{{2, 2, 2, false, 900, 600}};
    screens.list = {screen({0, 0, 900, 600}, panel), screen({0, 600, 900, 600}, monitor),
                    screen({-900, 0, 900, 600}, {})};
    EXPECT_EQ(keys(DisplaySnapshotProvider{screens}.currentSnapshot()),
              (std::vector<std::string>{"external:0.000:0.000:0.500:0.500:1:unknown",
                                        "external:0.500:0.500:0.500:0.500:1:900x600",
                                        "internal:0.500:0.000:0.500:0.500:1:900x600"}));
    screens.list.resize(1);
    EXPECT_EQ(defaultProfileName(DisplaySnapshotProvider{screens}.currentSnapshot()), "Built-in Display");
    screens.list = {screen({0, 0, 333.33, 100}, monitor), screen({333.33, 0, 666.6, 100}, monitor)};
    EXPECT_EQ(keys(DisplaySnapshotProvider{screens}.currentSnapshot())[1],
              "external:0.333:0.000:0.667:1.000:1:900x600");
}

// ----- matching

using testing::desk;
using testing::profile;

/// A setup with `count` displays of which the first `sameKeys` stand where the desk's do and the first
/// `sameUnits` are the desk's units.
MonitorProfile similar(std::string name, int count, int sameKeys, int sameUnits) {
    auto displays = desk();
    displays.displays.resize(static_cast<std::size_t>(count), displays.displays.back());
    for (int i = 0; i < count; ++i) {
        auto& display = displays.displays[static_cast<std::size_t>(i)];
        if (i >= sameKeys)
            display.normalizedFrame.width += 0.25;
        if (i >= sameUnits)
            display.stableID = "9-9-" + std::to_string(i);
    }
    return profile(std::move(name), displays);
}

const MonitorProfile* profileOf(const MatchResult& result) {
    if (const auto* exact = std::get_if<match::Exact>(&result))
        return &exact->profile;
    if (const auto* suggested = std::get_if<match::Suggested>(&result))
        return &suggested->profile;
    return nullptr;
}

TEST(MonitorProfileMatcher, ScoresArrangementHardwareAndCount) {
    const auto score = [](const MonitorProfile& saved) {
        return MonitorProfileMatcher{}.similarityScore(desk(), saved);
    };
    EXPECT_DOUBLE_EQ(score(similar("same", 2, 2, 2)), 1.0);
    EXPECT_DOUBLE_EQ(score(similar("other units", 2, 2, 0)), 0.8);
    EXPECT_DOUBLE_EQ(score(similar("one unit", 2, 2, 1)), 0.9);
    EXPECT_DOUBLE_EQ(score(similar("one moved", 2, 1, 2)), 0.7);
    EXPECT_EQ(score(similar("three", 3, 3, 3)), 0);
    auto other = similar("no ids", 2, 2, 2);
    other.displayFingerprint.stableDisplayIDs.pop_back();
    EXPECT_DOUBLE_EQ(score(other), 0.9) << "one of two is shared";
    other.displayFingerprint.stableDisplayIDs.clear();
    EXPECT_DOUBLE_EQ(score(other), 0.8);
    auto& signature = other.displayFingerprint.arrangementSignature;
    signature = "external:0.000:9|" + signature.substr(0, signature.find('|'));
    EXPECT_DOUBLE_EQ(score(other), 0.2) << "the left display's key, one place on";
}

TEST(MonitorProfileMatcher, FindsTheFirstExactSetup) {
    const MonitorProfileMatcher matcher;
    EXPECT_EQ(matcher.match(desk(), {}), MatchResult(match::NoMatch{}));
    const auto first = profile("Zoo", desk());
    const std::vector profiles{similar("Near", 2, 2, 1), first, profile("Ark", desk())};
    EXPECT_EQ(matcher.match(desk(), profiles),
              MatchResult(match::Exact{first, "Exact display identity and arrangement match."}));

    auto anonymous = desk();
    for (auto& display : anonymous.displays)
        display.stableID.reset();
    EXPECT_TRUE(std::holds_alternative<match::Suggested>(matcher.match(anonymous, {profile("A", anonymous)})))
        << "without hardware identity nothing is certain";
}

TEST(MonitorProfileMatcher, RemembersConfirmedArrangementsWhateverTheHardware) {
    const MonitorProfileMatcher matcher;
    auto first = similar("First", 2, 0, 0), second = similar("Second", 2, 0, 0);
    first.learnedAssociations = second.learnedAssociations = {
        {.confirmedDisplaySignature = matcher.makeFingerprint(desk()).arrangementSignature}};
    EXPECT_EQ(matcher.match(desk(), {similar("Near", 2, 2, 1), first, second}),
              MatchResult(match::Exact{first, "Reused a previously confirmed fuzzy association."}));
    EXPECT_EQ(profileOf(matcher.match(desk(), {first, profile("Same", desk())}))->name, "Same")
        << "identity counts more";
}

TEST(MonitorProfileMatcher, SuggestsOnlyWhatIsClearlyBest) {
    const MonitorProfileMatcher matcher;
    const auto near = similar("Near", 2, 2, 1);
    const auto far = similar("Far", 2, 2, 0), alike = similar("Alike", 2, 2, 0);
    EXPECT_EQ(matcher.match(desk(), {far, near}),
              MatchResult(match::Suggested{near, "same display count and nearly identical arrangement"}));
    EXPECT_EQ(matcher.match(desk(), {far, alike}),
              MatchResult(match::Ambiguous{
                  {alike, far}, "Multiple saved profiles look similar, so Tavrin will not auto-select one."}))
        << "equals are ordered by name";
}

TEST(MonitorProfileMatcher, KeepsItsThresholdsToTheHair) {
    // 50 displays give keys and units in steps of hundredths: a score of 0.2 + 0.6 k/50 + 0.2 u/50.
    DisplaySnapshotCollection wall;
    for (int i = 0; i < 50; ++i)
        wall.displays.push_back(
            testing::display("unit-" + std::to_string(100 + i), {0, 0, 100, 100}, {i / 100.0, 0, 0.01, 1}));
    const auto changed = [&](std::string name, int keys, int units) {
        auto displays = wall;
        for (int i = 0; i < 50; ++i) {
            if (i >= keys)
                displays.displays[static_cast<std::size_t>(i)].normalizedFrame.y = 0.5;
            if (i >= units)
                displays.displays[static_cast<std::size_t>(i)].stableID = "x-" + std::to_string(i);
        }
        return profile(std::move(name), displays);
    };
    const MonitorProfileMatcher matcher;
    const auto verdict = [&](std::vector<MonitorProfile> profiles) {
        return matcher.match(wall, profiles).index();
    };
    const std::size_t suggested = 1, ambiguous = 2, none = 3;
    EXPECT_EQ(verdict({changed("0.72", 40, 10)}), suggested);
    EXPECT_EQ(verdict({changed("0.716", 40, 9)}), none);
    EXPECT_EQ(verdict({changed("0.84", 45, 25), changed("0.80", 45, 15)}), ambiguous);
    EXPECT_EQ(verdict({changed("0.86", 45, 30), changed("0.80", 45, 15)}), suggested);
}

// ----- the models

class CurrentProfileTest : public ::testing::Test, protected testing::StoredData {
protected:
    CurrentProfileViewModel model{displays, store};

    void create(const MonitorProfile& profile) {
        ASSERT_TRUE(store.createProfile(profile.name, profile.displayFingerprint));
    }
};

TEST_F(CurrentProfileTest, PublishesEachVerdict) {
    displays.snapshot = desk();
    create(similar("Studio", 2, 2, 0));
    model.refresh();
    EXPECT_EQ(model.setup.value().suggestedProfileName(), "Studio");
    EXPECT_TRUE(model.setup.value().requiresConfirmation() && model.setup.value().suggestedProfileID());

    create(similar("Desk", 2, 2, 0));
    model.refresh();
    EXPECT_EQ(model.setup.value().suggestedProfileName(), "Desk, Studio");
    EXPECT_TRUE(model.setup.value().requiresConfirmation());
    EXPECT_FALSE(model.setup.value().suggestedProfileID()) << "several similar setups are no suggestion";
    model.confirmSuggestedProfile();
    EXPECT_FALSE(model.setup.value().currentProfileName()) << "and cannot be confirmed";

    create(profile("Exact", desk()));
    model.refresh();
    EXPECT_EQ(model.setup.value().currentProfileName(), "Exact");
    EXPECT_FALSE(model.setup.value().requiresConfirmation() || model.setup.value().suggestedProfileName());

    files.files["/data/profiles.json"] = "{";
    model.refresh();
    EXPECT_EQ(model.setup.value().matchExplanation, "Tavrin could not load saved display setup metadata.");
    EXPECT_FALSE(model.setup.value().currentProfileName() || model.setup.value().profile);
}

} // namespace
} // namespace tavrin
