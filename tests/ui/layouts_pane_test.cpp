#include "settings_fixture.h"
#include "ui/layouts_pane.h"

namespace tavrin {
namespace {

constexpr KeyCombo controlR{15, ModifierSet::control};

class LayoutsPaneTest : public ::testing::Test, public testing::SettingsFixture {
protected:
    LayoutsPane pane{collaborators};

    LayoutsPaneTest() { pane.appear(); }

    const LayoutCard& card(const Uuid& layoutID) {
        for (const SetupCard& setup : pane.content().setups)
            for (const LayoutCard& layout : setup.layouts)
                if (layout.id == layoutID)
                    return layout;
        ADD_FAILURE() << "no such layout";
        static const LayoutCard none;
        return none;
    }
    /// Setups and layouts as the pane shows them, for example "Desk: Work Play. Home: Evening."
    std::string shown() {
        std::string text;
        for (const SetupCard& setup : pane.content().setups) {
            text += setup.name + ":";
            for (const LayoutCard& layout : setup.layouts)
                text += " " + layout.name;
            text += ". ";
        }
        return text;
    }
    void failWrites() { files.failing = {"writeFlushed"}; }
};

TEST_F(LayoutsPaneTest, ShowsTheConnectedSetupFirstWithItsLayouts) {
    ASSERT_TRUE(store.setDefaultLayout(deskID, playID));
    shortcuts.setLayoutShortcut(controlR, workID);
    pane.appear();
    ASSERT_EQ(shown(), "Desk: Work Play. Home: Evening. ");
    const SetupCard& connected = pane.content().setups[0];
    EXPECT_TRUE(connected.isCurrent);
    EXPECT_FALSE(pane.content().setups[1].isCurrent);
    EXPECT_EQ(connected.detail, "2 displays · Association learning has not started yet.");
    EXPECT_EQ(pane.content().setups[1].detail, "1 display · Association learning has not started yet.");
    EXPECT_EQ(card(workID).windowCount, 2U);
    EXPECT_EQ(card(workID).shortcut, controlR);
    EXPECT_FALSE(card(workID).isDefault);
    EXPECT_TRUE(card(playID).isDefault);
    EXPECT_TRUE(card(workID).canUpdate);
    EXPECT_FALSE(card(eveningID).canUpdate) << "other displays are connected";
    EXPECT_EQ(pane.content().suggestion, std::nullopt);

    displays.snapshot = testing::leftAlone();
    current.refresh();
    EXPECT_EQ(shown(), "Home: Evening. Desk: Work Play. ") << "follows the displays by itself";
}

TEST_F(LayoutsPaneTest, TellsSetupsOfOneNameApart) {
    ASSERT_TRUE(store.renameProfile(homeID, "Desk"));
    pane.appear();
    displays.snapshot = testing::leftAlone();
    pane.update(workID);
    EXPECT_EQ(card(workID).status, "") << "its displays went just now";
    EXPECT_EQ(pane.content().setups.front().id, homeID);
    EXPECT_FALSE(card(workID).canUpdate);
}

TEST_F(LayoutsPaneTest, OffersASuggestionForConfirmation) {
    const auto studio = store.createProfile("Studio", fingerprint(testing::desk()));
    displays.snapshot.displays[1].stableID = "9-9-9";
    current.refresh();
    ASSERT_TRUE(pane.content().suggestion);
    EXPECT_EQ(pane.content().suggestion->title, "Suggested display setup: Desk, Studio");
    EXPECT_FALSE(pane.content().suggestion->canConfirm) << "none of several is picked";

    pane.deleteSetup(studio->id);
    ASSERT_TRUE(pane.content().suggestion);
    EXPECT_EQ(*pane.content().suggestion,
              (SetupSuggestion{"Suggested display setup: Desk",
                               "same display count and nearly identical arrangement", true}));
    EXPECT_EQ(shown(), "Desk: Work Play. Home: Evening. ");
    pane.confirmSuggestion();
    EXPECT_EQ(pane.content().suggestion, std::nullopt);
    EXPECT_TRUE(pane.content().setups[0].isCurrent);
    EXPECT_EQ(pane.content().setups[0].detail, "2 displays · 1 Association learned");
}

TEST_F(LayoutsPaneTest, RenamesUnlessTheNameIsRefusedOrTaken) {
    const std::string longest(50, 'x');
    for (const auto& [name, refusal] :
         {std::pair<std::string, const char*>{" \n", "Enter a name for this layout."},
          {longest + "x", "Use at most 50 characters."},
          {"PLAY ", "Another layout of this display setup has this name."}}) {
        EXPECT_EQ(pane.layoutNameRefusal(workID, name), refusal);
        pane.renameLayout(workID, name);
        EXPECT_EQ(card(workID).name, "Work");
    }
    for (const std::string name : {"Evening", "work", longest.c_str()}) {
        EXPECT_EQ(pane.layoutNameRefusal(workID, name), std::nullopt) << name;
        pane.renameLayout(workID, "  " + name);
        EXPECT_EQ(card(workID).name, name);
    }
    const auto before = files.log.size();
    pane.renameLayout(workID, longest);
    EXPECT_EQ(files.log.size(), before) << "the same name is no change";
    failWrites();
    pane.renameLayout(workID, "Other");
    EXPECT_EQ(card(workID).name, longest);
}

TEST_F(LayoutsPaneTest, RenamesASetupEverywhere) {
    EXPECT_EQ(pane.setupNameRefusal(" "), "Enter a name for this display setup.");
    pane.renameSetup(deskID, " ");
    pane.renameSetup(deskID, "Office");
    EXPECT_EQ(shown(), "Office: Work Play. Home: Evening. ");
    EXPECT_EQ(current.setup.value().currentProfileName(), "Office");
}

TEST_F(LayoutsPaneTest, NamesWhatADeletionCosts) {
    EXPECT_EQ(pane.layoutDeletionQuestion(playID),
              (DeletionQuestion{"Delete layout “Play”?", "The saved places of 1 window will be lost.",
                                "Delete Layout"}));
    shortcuts.setLayoutShortcut(controlR, workID);
    pane.setDefault(workID, LayoutsPane::DefaultLayout::set);
    EXPECT_EQ(
        pane.layoutDeletionQuestion(workID)->message,
        "The saved places of 2 windows will be lost. Its shortcut ⌃R will be removed. It is the default "
        "layout of “Desk”, which will have none then.");
    ASSERT_TRUE(store.learnAssociation(deskID, "a", "b"));
    pane.appear();
    EXPECT_EQ(pane.setupDeletionQuestion(deskID),
              (DeletionQuestion{"Delete display setup “Desk”?",
                                "2 layouts will be lost: “Work”, “Play”. 1 shortcut will be removed. 1 "
                                "confirmed recognition will be forgotten.",
                                "Delete Setup"}));
    for (int i = 0; i < 5; ++i)
        save("L" + std::to_string(i), homeID, {});
    pane.appear();
    EXPECT_EQ(pane.setupDeletionQuestion(homeID)->message,
              "6 layouts will be lost: “Evening”, “L0”, “L1”, “L2”, “L3”, “L4”.");
    save("L5", homeID, {});
    pane.appear();
    EXPECT_TRUE(pane.setupDeletionQuestion(homeID)->message.ends_with("“L4” and 1 more."));
    ASSERT_TRUE(store.deleteLayout(playID));
    pane.appear();
    EXPECT_EQ(pane.layoutDeletionQuestion(playID), std::nullopt) << "gone meanwhile";
}

TEST_F(LayoutsPaneTest, DeletesLayoutsAndSetupsWithTheirShortcuts) {
    shortcuts.setLayoutShortcut(controlR, workID);
    shortcuts.setLayoutShortcut(KeyCombo{16, ModifierSet::control}, playID);
    shortcuts.setLayoutShortcut(KeyCombo{17, ModifierSet::control}, eveningID);
    const auto shortcutCount = [&] { return settings.load()->layoutShortcuts.size(); };
    failWrites();
    pane.deleteLayout(workID);
    pane.deleteSetup(deskID);
    files.failing.clear();
    EXPECT_EQ(shown(), "Desk: Work Play. Home: Evening. ");
    EXPECT_EQ(shortcutCount(), 3U) << "what is still there keeps its shortcut";

    pane.deleteLayout(workID);
    EXPECT_EQ(shown(), "Desk: Play. Home: Evening. ");
    EXPECT_EQ(shortcutCount(), 2U);
    pane.deleteSetup(deskID);
    EXPECT_EQ(shown(), "Home: Evening. ");
    EXPECT_EQ(layoutNames(), std::vector<std::string>{"Evening"});
    EXPECT_EQ(shortcutCount(), 1U);
    EXPECT_EQ(shortcuts.layoutShortcuts.value().count(eveningID), 1U);
    pane.deleteSetup(homeID);
    EXPECT_TRUE(pane.content().isEmpty());
}

TEST_F(LayoutsPaneTest, MakesAndUnmakesTheDefault) {
    pane.setDefault(workID, LayoutsPane::DefaultLayout::set);
    EXPECT_TRUE(card(workID).isDefault);
    pane.setDefault(playID, LayoutsPane::DefaultLayout::set);
    EXPECT_FALSE(card(workID).isDefault);
    failWrites();
    pane.setDefault(playID, LayoutsPane::DefaultLayout::cleared);
    EXPECT_TRUE(card(playID).isDefault);
    files.failing.clear();
    pane.setDefault(playID, LayoutsPane::DefaultLayout::cleared);
    EXPECT_EQ(profileNamed("Desk").defaultLayoutID, std::nullopt);
}

TEST_F(LayoutsPaneTest, UpdatesALayoutWithTheWindowsOfNow) {
    windows.windows = {testing::window(1, "Game", "", {0, 0, 500, 500})};
    pane.update(workID);
    EXPECT_EQ(card(workID).windowCount, 1U);
    EXPECT_EQ(card(workID).picture.windows.at(0).label, "Game");
    EXPECT_EQ(card(workID).status, "Updated with 1 window.");
    pane.update(eveningID);
    EXPECT_EQ(card(eveningID).picture.windows.at(0).label, "Browser") << "not its displays";

    failWrites();
    pane.update(playID);
    EXPECT_EQ(card(playID).status, "Not updated.");
    EXPECT_EQ(card(workID).status, "") << "tells of the last action only";
    files.failing.clear();
    windows.windows.clear();
    pane.update(playID);
    EXPECT_EQ(card(playID).status, "Not updated: no windows are open.");
    EXPECT_EQ(card(playID).windowCount, 1U);

    const Uuid twin = save("WORK", deskID, {});
    pane.appear();
    EXPECT_FALSE(card(twin).canUpdate) << "saving under its name would replace another layout";
}

TEST_F(LayoutsPaneTest, RestoresAndSavesThroughTheProgram) {
    restores.results = {RestoreResult(2, 1, 1, {"Editor: no"})};
    pane.restore(workID);
    pane.restore(Uuid::random());
    ASSERT_EQ(restores.restored.size(), 1U);
    EXPECT_EQ(restores.restored.front().id, workID);
    EXPECT_EQ(card(workID).status, "Restored: 1 of 2 windows in place.");
    pane.saveLayout({10, 20, 80, 20});
    EXPECT_EQ(host.log, "save ");
}

TEST_F(LayoutsPaneTest, TellsOnlyOfRealChanges) {
    int changes = 0;
    const auto token = pane.changed.connect([&] { ++changes; });
    pane.appear();
    EXPECT_EQ(changes, 0);
    shortcuts.setLayoutShortcut(controlR, workID);
    EXPECT_EQ(changes, 1);
    save("New", deskID, {});
    list.reload();
    EXPECT_EQ(changes, 2) << "a layout saved from the menu shows up";
}

} // namespace
} // namespace tavrin
