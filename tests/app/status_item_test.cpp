#include "app/status_item_controller.h"
#include "doubles/builders.h"
#include "doubles/fake_interface.h"
#include "doubles/stored_data.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

/// A menu as text, an item that cannot be chosen in brackets, a submenu in braces.
std::string dump(const MenuModel& menu) {
    std::string text;
    for (const MenuItem& item : menu) {
        text += item.isSeparator ? "---" : item.isEnabled ? item.title : "[" + item.title + "]";
        if (const auto& key = item.keyEquivalent)
            text += fmt::format(" <{:x}+{}>", key->modifiers.rawValue, key->key);
        if (!item.submenu.empty())
            text += " { " + dump(item.submenu) + "}";
        text += "; ";
    }
    return text;
}

TEST(StatusItemMenu, ShowsTheSetupAndItsLayouts) {
    const auto desk = testing::profile("Desk", testing::desk());
    const auto couch = testing::profile("Couch", testing::leftAlone());
    auto work = testing::layout("Work", {}), play = testing::layout("Play", {}),
         film = testing::layout("Film", {});
    work.profileID = play.profileID = desk.id;
    film.profileID = couch.id;
    StatusItemMenuContent content{.permission = AccessibilityPermissionState::granted,
                                  .currentProfileName = "Desk",
                                  .suggestedProfileName = "never beside a match",
                                  .matchExplanation = "Because.",
                                  .matchedProfile = desk,
                                  .setups = {{desk, couch}, {work, film, play}},
                                  .version = "1.2"};
    content.matchedProfile->defaultLayoutID = play.id;
    content.layoutShortcuts = {{work.id, {15, ModifierSet::control | ModifierSet::option}}};
    const auto menu = statusItemMenu(content);
    const std::string tail = "---; Settings… <0+,>; ---; [Beta v1.2 — free during beta]; Quit Tavrin <0+q>; ";
    EXPECT_EQ(dump(menu), "[Current Display Setup]; [Desk]; [Because.]; ---; "
                          "Save Layout…; Update Layout { Work; Play; }; ---; "
                          "[Restore Layout]; Work <c0000+R>; Play (auto); "
                          "Other Display Setups { Couch { Film; }; }; " +
                              tail);
    EXPECT_EQ(menu[8].representedObject, work.id);
    EXPECT_EQ(menu[8].action, MenuAction::restoreLayout);
    EXPECT_EQ(menu[5].submenu[1].representedObject, play.id);
    EXPECT_EQ(menu[5].submenu[1].action, MenuAction::quickUpdateLayout);

    content.matchedProfile.reset();
    content.currentProfileName.reset();
    content.suggestedProfileName = "Desk";
    content.requiresConfirmation = true;
    EXPECT_EQ(dump(statusItemMenu(content)),
              "[Current Display Setup]; [Desk]; [Because.]; Confirm Suggested Setup; ---; Save Layout…; ---; "
              "[No Display Setup Matched]; "
              "Other Display Setups { Desk { Work <c0000+R>; Play; }; Couch { Film; }; }; " +
                  tail);
}

TEST(StatusItem, ChoosesTheFeedbackSymbol) {
    EXPECT_EQ(feedbackSymbol({3, 3, 0, {}, 0, 0}), "checkmark.circle.fill");
    EXPECT_EQ(feedbackSymbol({3, 2, 1, {}, 0, 1}), "exclamationmark.triangle.fill");
    EXPECT_EQ(feedbackSymbol({3, 0, 3, {}, 0, 3}), "xmark.circle");
    EXPECT_EQ(feedbackSymbol({0, 0, 0, {}, 0, 0}), "xmark.circle");
}

class StatusItemTest : public ::testing::Test, protected testing::StoredData {
protected:
    testing::FixedWindows windows;
    testing::FixedPermission permission;
    testing::ScriptedRestores restores;
    testing::FakeKeys keys;
    testing::FakeDefaults defaults;
    testing::FakeHost host;
    testing::FakePopover popover;
    testing::FakeStatusItem item;
    PermissionStatusViewModel permissionModel{permission, time};
    CurrentProfileViewModel current{displays, store};
    ProfileListViewModel list{store};
    ShortcutManager shortcuts{settings, keys, time};
    RestoreDebugStore debugStore;
    LayoutRestorer restorer{{store, restores, debugStore, time, [this] { permissionModel.refresh(); }}};
    CaptureService capture{{windows, nullptr, store, settings, displays, time}, 4711};
    SettingsWindowController settingsWindow{host, host, AppDataResetCoordinator{paths, defaults}};
    LayoutChanges changes{{capture, store, shortcuts, current, list, time}};
    CapturePopoverController capturePopover{capture, store, changes, current, list, popover};
    StatusItemController controller{{permissionModel, settingsWindow, current, list, capturePopover, store,
                                     restorer, shortcuts, item, host, host, time}};

    void SetUp() override {
        displays.snapshot = testing::desk();
        windows.windows = {testing::window(1, "a", "t", {0, 0, 400, 300})};
        restores.results = {RestoreResult(1, 1, 0, {})};
    }

    SavedLayout savedThroughPopover(const std::string& name) {
        item.chosen(MenuAction::saveCurrentLayout, {});
        popover.view->setLayoutName(name);
        popover.view->save();
        return store.loadLayouts()->back();
    }
};

TEST_F(StatusItemTest, SavesThroughThePopoverAndUpdatesWithoutIt) {
    const auto saved = savedThroughPopover(" Work ");
    EXPECT_EQ(saved.name, "Work");
    EXPECT_FALSE(popover.view) << "saving closes the popover";
    EXPECT_EQ(list.profiles.value().size(), 1u);

    item.chosen(MenuAction::saveCurrentLayout, {});
    EXPECT_EQ(popover.view->errorMessage(), "Enter a name for this layout.");
    popover.view->setLayoutName("wORK ");
    EXPECT_EQ(popover.view->notice(), "Replaces existing layout");
    popover.view->setLayoutName(std::string(51, 'x'));
    popover.view->save();
    EXPECT_TRUE(popover.view) << "a name that cannot be saved keeps the popover";
    popover.view->cancel();
    EXPECT_FALSE(popover.view);

    windows.windows.push_back(testing::window(2, "b", "u", {0, 0, 400, 300}));
    item.chosen(MenuAction::quickUpdateLayout, saved.id);
    EXPECT_EQ(popover.shown, 2);
    EXPECT_EQ(store.loadLayouts()->size(), 1u);
    EXPECT_EQ(store.loadLayouts()->front().entries.size(), 2u);
}

TEST_F(StatusItemTest, MakesTheProfileBeforeANameIsTyped) {
    item.chosen(MenuAction::saveCurrentLayout, {});
    EXPECT_EQ(list.profiles.value().size(), 1u);
    EXPECT_EQ(current.setup.value().currentProfileName(), "2-Display Setup");
    popover.view.reset();
    files.files["/data/profiles.json"] = "broken";
    item.chosen(MenuAction::saveCurrentLayout, {});
    EXPECT_FALSE(popover.view) << "nothing to save for";
}

TEST_F(StatusItemTest, RestoresRecordsAndShowsFeedbackForAMoment) {
    const auto saved = savedThroughPopover("Work");
    item.chosen(MenuAction::restoreLayout, saved.id);
    EXPECT_EQ(debugStore.lastAttempt.value(),
              (RestoreAttemptDiagnostics{time.now(), RestoreTriggerSource::menuBar, "Work", saved.kind,
                                         restores.results[0]}));
    EXPECT_EQ(item.image, "checkmark.circle.fill");
    time.pass(1);
    restores.results = {RestoreResult(1, 0, 1, {})};
    item.chosen(MenuAction::restoreLayout, saved.id);
    EXPECT_EQ(item.image, "xmark.circle");
    time.pass(1);
    EXPECT_EQ(item.image, "xmark.circle") << "the first feedback's end is not the second's";
    time.pass(0.6);
    EXPECT_EQ(item.image, "MenuBarGlyph");
    item.chosen(MenuAction::restoreLayout, Uuid::random());
    item.chosen(MenuAction::restoreLayout, {});
    EXPECT_EQ(restores.restored.size(), 2u);
    EXPECT_EQ(item.image, "MenuBarGlyph");
    item.hasImages = false;
    item.chosen(MenuAction::restoreLayout, saved.id);
    time.pass(2);
    EXPECT_EQ(item.title, "T");
}

TEST_F(StatusItemTest, RebuildsTheMenuOncePerTurnAndWhenItOpens) {
    time.pass(0);
    const int before = item.menusSet;
    permissionModel.refresh();
    current.refresh();
    savedThroughPopover("Work");
    time.pass(0);
    EXPECT_EQ(item.menusSet, before + 1);
    EXPECT_NE(dump(item.menu).find("; Work; "), std::string::npos);
    permission.state = AccessibilityPermissionState::denied;
    item.willOpen();
    EXPECT_NE(dump(item.menu).find("Accessibility access is required"), std::string::npos);
    EXPECT_EQ(permission.prompts, 0);
    permission.state = AccessibilityPermissionState::granted;
    displays.snapshot.displays[0].stableID = "another unit";
    item.willOpen();
    EXPECT_NE(dump(item.menu).find("; Confirm Suggested Setup; "), std::string::npos);
    item.chosen(MenuAction::confirmSuggestedProfile, {});
    EXPECT_TRUE(current.setup.value().profile);
    files.files["/data/layouts.json"] = "broken";
    item.willOpen();
    EXPECT_NE(dump(item.menu).find("; [Cannot read layouts.json]; "), std::string::npos);
}

TEST_F(StatusItemTest, LeadsToTheRest) {
    defaults.booleans["tavrin.beta.resetNoticePending"] = true;
    item.chosen(MenuAction::openSettings, {});
    host.closed();
    item.chosen(MenuAction::openSettings, {});
    item.chosen(MenuAction::openAccessibilitySettings, {});
    item.chosen(MenuAction::quit, {});
    EXPECT_EQ(host.log, "regular window0! activate accessory regular window0! activate help terminate ");
    host.log.clear();
    settingsWindow.bringForward();
    host.open = true;
    settingsWindow.bringForward();
    EXPECT_EQ(host.log, "regular window0! activate activate ") << "an open window stays as it is";
    permission.state = AccessibilityPermissionState::denied;
    item.chosen(MenuAction::recheckPermission, {});
    permission.state = AccessibilityPermissionState::granted;
    time.pass(2);
    EXPECT_EQ(permissionModel.state.value(), AccessibilityPermissionState::granted);
}

} // namespace
} // namespace tavrin
