#include "settings_fixture.h"
#include "ui/automation_settings_view.h"

namespace tavrin {
namespace {

class AutomationSettingsTest : public ::testing::Test, public testing::SettingsFixture {
protected:
    AutomationSettingsView view{{settings, store, list, launchAtLogin, time}};

    void failWrites() { files.failing = {"writeFlushed"}; }
};

TEST_F(AutomationSettingsTest, ShowsTheFileWhenASwitchCannotBeSaved) {
    ASSERT_TRUE(settings.save({.autoRestoreOnWake = true}));
    view.appear();
    failWrites();
    view.setEventSwitch(&AppSettings::autoRestoreOnWake, false);
    EXPECT_TRUE(view.settings().autoRestoreOnWake);
    files.failing = {"read"};
    view.setEventSwitch(&AppSettings::autoRestoreOnWake, false);
    EXPECT_TRUE(view.settings().autoRestoreOnWake) << "not even readable: nothing has changed";
    view.appear();
    EXPECT_TRUE(view.settings().autoRestoreOnWake) << "what was shown stays";
}

TEST_F(AutomationSettingsTest, AdoptsWhatTheSessionDoesAtLogin) {
    for (const bool isEnabled : {true, false}) {
        ASSERT_TRUE(settings.save({.launchAtLogin = !isEnabled}));
        loginItem.current = isEnabled ? LoginItemStatus::enabled : LoginItemStatus::notRegistered;
        view.appear();
        EXPECT_EQ(view.settings().launchAtLogin, isEnabled);
        EXPECT_EQ(settings.load()->launchAtLogin, isEnabled);
    }
}

TEST_F(AutomationSettingsTest, PutsTheLoginSwitchBackWhenTheSessionRefuses) {
    for (const bool isEnabled : {false, true}) {
        loginItem.current = isEnabled ? LoginItemStatus::enabled : LoginItemStatus::notRegistered;
        loginItem.fails = false;
        view.appear();
        loginItem.fails = true;
        view.setLaunchAtLogin(!isEnabled);
        EXPECT_EQ(view.launchAtLoginError(), std::string("Could not ") + (isEnabled ? "disable" : "enable") +
                                                 " launch at login: no room");
        EXPECT_EQ(view.settings().launchAtLogin, !isEnabled) << "put back only after the switch has moved";
        time.pass(0);
        EXPECT_EQ(view.settings().launchAtLogin, isEnabled);
        EXPECT_EQ(settings.load()->launchAtLogin, isEnabled) << "the failed value is not saved";
        loginItem.fails = false;
        view.setLaunchAtLogin(!isEnabled);
        time.pass(0);
        EXPECT_FALSE(view.launchAtLoginError());
        EXPECT_EQ(view.settings().launchAtLogin, !isEnabled);
        EXPECT_EQ(settings.load()->launchAtLogin, !isEnabled);
    }
}

TEST_F(AutomationSettingsTest, ChoosesTheDefaultLayoutOfEachSetup) {
    view.appear();
    using Setup = AutomationSettingsView::Setup;
    EXPECT_EQ(view.setups(), (std::vector<Setup>{{homeID, "Home", {{eveningID, "Evening"}}},
                                                 {deskID, "Desk", {{workID, "Work"}, {playID, "Play"}}}}));
    const auto chosen = [&] { return view.defaultLayoutSelections(); };
    EXPECT_TRUE(chosen().empty());
    view.chooseDefaultLayout(deskID, playID);
    EXPECT_EQ(chosen(), (std::map<Uuid, Uuid>{{deskID, playID}}));
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, playID);
    EXPECT_EQ(list.profiles.value().back().defaultLayoutID, playID);

    failWrites();
    view.chooseDefaultLayout(deskID, workID);
    EXPECT_EQ(chosen(), (std::map<Uuid, Uuid>{{deskID, playID}})) << "shows what is stored";
    files.failing.clear();
    view.chooseDefaultLayout(deskID, std::nullopt);
    EXPECT_TRUE(chosen().empty());
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, std::nullopt);
}

} // namespace
} // namespace tavrin
