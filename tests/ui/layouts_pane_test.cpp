#include "settings_fixture.h"
#include "ui/layouts_pane.h"
#include "ui/troubles.h"

#include <functional>

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
    std::string notice() { return changes.notice.value() ? changes.notice.value()->text : std::string(); }
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
    EXPECT_EQ(connected.detail, "2 displays");
    EXPECT_EQ(card(workID).windowCount, 2U);
    EXPECT_EQ(card(workID).shortcut, controlR);
    EXPECT_FALSE(card(workID).isDefault);
    EXPECT_TRUE(card(playID).isDefault);
    EXPECT_TRUE(card(workID).canUpdate);
    EXPECT_FALSE(card(eveningID).canUpdate) << "other displays are connected";
    EXPECT_EQ(pane.content().suggestionTitle, "");

    displays.snapshot = testing::leftAlone();
    current.refresh();
    EXPECT_EQ(shown(), "Home: Evening. Desk: Work Play. ") << "follows the displays by itself";
}

TEST_F(LayoutsPaneTest, TellsSetupsOfOneNameApart) {
    ASSERT_TRUE(store.renameProfile(homeID, "Desk"));
    pane.appear();
    displays.snapshot = testing::leftAlone();
    pane.update(workID);
    EXPECT_EQ(notice(), "") << "its displays went just now";
    EXPECT_EQ(pane.content().setups.front().id, homeID);
    EXPECT_FALSE(card(workID).canUpdate);
}

TEST_F(LayoutsPaneTest, TheUserSaysWhichOfSeveralSimilarSetupsIsConnected) {
    const auto studio = store.createProfile("Studio", fingerprint(testing::desk()));
    displays.snapshot.displays[1].stableID = "9-9-9";
    current.refresh();
    EXPECT_EQ(pane.content().suggestionTitle, "Suggested display setup: Desk, Studio");
    for (const SetupCard& setup : pane.content().setups)
        EXPECT_EQ(setup.isCandidate, setup.id != homeID) << setup.name;
    pane.confirmSetup(homeID);
    EXPECT_FALSE(current.setup.value().profile) << "was none of them";
    pane.confirmSetup(studio->id);
    EXPECT_EQ(pane.content().suggestionTitle, "");
    EXPECT_EQ(shown(), "Studio:. Home: Evening. Desk: Work Play. ");
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
    EXPECT_EQ(pane.layoutDeletionQuestion(workID)->message,
              "The saved places of 2 windows will be lost. Its shortcut ⌃R (Ctrl+R) will be removed. It is "
              "the default "
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

// What overwrites or removes something can be taken back, with the shortcuts, the default and the order.
TEST_F(LayoutsPaneTest, TakesBackAChange) {
    shortcuts.setLayoutShortcut(controlR, workID);
    shortcuts.setLayoutShortcut(KeyCombo{16, ModifierSet::control}, playID);
    ASSERT_TRUE(store.setDefaultLayout(deskID, workID));
    windows.windows = {testing::window(1, "Game", "", {0, 0, 500, 500})};
    pane.appear();
    time.pass(100);
    struct Case {
        const char* text;
        std::function<void()> change;
        const char* shownThen;
    };
    for (const auto& [text, change, shownThen] :
         {Case{"Updated with 1 window.", [&] { pane.update(workID); }, "Desk: Work Play. Home: Evening. "},
          {"Updated with 1 window.", [&] { changes.save("WORK", deskID); },
           "Desk: Work Play. Home: Evening. "},
          {"Deleted layout “Work”.", [&] { pane.deleteLayout(workID); }, "Desk: Play. Home: Evening. "},
          {"Deleted display setup “Desk”.", [&] { pane.deleteSetup(deskID); }, "Home: Evening. "}}) {
        const auto profiles = store.loadProfiles();
        const auto layouts = store.loadLayouts();
        const auto combos = shortcuts.layoutShortcuts.value();
        change();
        EXPECT_EQ(shown(), shownThen);
        EXPECT_NE(store.loadLayouts(), layouts) << text;
        EXPECT_EQ(notice(), text);
        EXPECT_EQ(changes.notice.value()->actionLabel, "Undo");
        changes.act();
        EXPECT_EQ(store.loadProfiles(), profiles) << text;
        EXPECT_EQ(store.loadLayouts(), layouts) << text;
        EXPECT_EQ(shortcuts.layoutShortcuts.value(), combos) << text;
        EXPECT_EQ(notice(), "Undone.");
        changes.act();
        EXPECT_EQ(store.loadLayouts(), layouts) << "only once";
    }
    pane.deleteLayout(workID);
    shortcuts.setAutoDetectShortcut(controlR);
    changes.act();
    EXPECT_FALSE(shortcuts.layoutShortcuts.value().contains(workID)) << "its combination is another's now";
}

TEST_F(LayoutsPaneTest, AChangeCanBeTakenBackForAWhileAndUntilTheNext) {
    pane.deleteLayout(playID);
    time.pass(19.9);
    EXPECT_EQ(notice(), "Deleted layout “Play”.");
    time.pass(0.2);
    EXPECT_EQ(notice(), "");
    changes.act();
    pane.deleteLayout(workID);
    pane.renameSetup(deskID, "Office");
    EXPECT_EQ(notice(), "");
    changes.act();
    EXPECT_EQ(shown(), "Office:. Home: Evening. ");
}

TEST_F(LayoutsPaneTest, SaysWhenNothingWasStored) {
    const auto shownBefore = shown();
    const auto attempt = [&](std::function<void()> action) {
        action();
        EXPECT_FALSE(changes.notice.value()->isUndo);
        return notice();
    };
    EXPECT_EQ(attempt([&] { pane.update(workID); }), "Nothing was stored: no windows are open.");
    windows.windows = {testing::window(1, "Game", "", {0, 0, 500, 500})};
    failWrites();
    for (const auto& action : std::vector<std::function<void()>>{
             [&] { pane.update(workID); }, [&] { pane.deleteLayout(workID); },
             [&] { pane.deleteSetup(deskID); }, [&] { pane.renameLayout(workID, "Other"); },
             [&] { pane.setDefault(workID, LayoutsPane::DefaultLayout::set); }})
        EXPECT_TRUE(attempt(action).starts_with("Nothing was stored. Cannot ")) << notice();
    files.failing.clear();
    EXPECT_EQ(shown(), shownBefore);
    EXPECT_EQ(shortcuts.layoutShortcuts.value().size(), 0U);

    files.files["/data/layouts.json"] =
        R"({"payload": [], "schemaVersion": 2, "updatedAt": "2026-03-01T09:30:00Z"})";
    pane.appear();
    EXPECT_TRUE(pane.content().isUnreadable);
    EXPECT_FALSE(pane.content().canSave);
    EXPECT_FALSE(pane.content().isEmpty()) << "unreadable is not empty";
    Troubles troubles(collaborators);
    ASSERT_EQ(troubles.list().size(), 1U);
    EXPECT_EQ(troubles.list()[0].title, "“layouts.json” cannot be read");
    EXPECT_EQ(troubles.list()[0].message,
              "Reason: it was written by another version of the program (format 2). Its content is not "
              "shown, and nothing is saved to it until it can be read again or is set aside.");
    troubles.setFilesAside();
    EXPECT_TRUE(troubles.list().empty());
    EXPECT_EQ(shown(), "Desk:. Home:. ");
}

TEST_F(LayoutsPaneTest, OffersAutomaticRestoreAfterTheFirstLayoutOfASetup) {
    windows.windows = {testing::window(1, "Game", "", {0, 0, 500, 500})};
    changes.save("More", deskID);
    EXPECT_EQ(changes.notice.value()->actionLabel, "") << "not the first one";
    const auto studio = store.createProfile("Studio", fingerprint(testing::leftAlone()));
    changes.save("First", studio->id);
    EXPECT_EQ(changes.notice.value()->actionLabel, "Restore Automatically");
    time.pass(60);
    changes.act();
    EXPECT_EQ(profileNamed("Studio").defaultLayoutID, store.loadLayouts()->back().id);
}

TEST_F(LayoutsPaneTest, UpdatesOnlyWhatIsSurelyMeant) {
    windows.windows = {testing::window(1, "Game", "", {0, 0, 500, 500})};
    const Uuid twin = save("WORK", deskID, {});
    pane.appear();
    for (const Uuid& id : {eveningID, twin}) {
        EXPECT_FALSE(card(id).canUpdate) << "other displays, or a name that another layout has";
        const auto layouts = store.loadLayouts();
        pane.update(id);
        EXPECT_EQ(store.loadLayouts(), layouts);
    }
    permission.state = AccessibilityPermissionState::denied;
    permissionModel.refresh();
    EXPECT_FALSE(pane.content().canSave);
    EXPECT_FALSE(card(workID).canRestore);
    EXPECT_FALSE(card(workID).canUpdate);
}

TEST_F(LayoutsPaneTest, SaysWhyARestoreWasNotComplete) {
    windows.windows = {testing::window(1, "Editor", "", {0, 0, 500, 500})};
    restores.results = {RestoreResult(2, 1, 1, {}, 1, 0), RestoreResult(2, 1, 1, {"Editor: no"}, 0, 1),
                        RestoreResult(2, 2, 0, {})};
    pane.restore(workID);
    EXPECT_EQ(card(workID).report, (RestoreReport{"1 of 2 in place. Not open: Editor.", true, true}));
    pane.restore(workID);
    EXPECT_EQ(card(workID).report, (RestoreReport{"1 of 2 in place. Not moved: 1 window.", true, true}));
    pane.restore(workID);
    EXPECT_EQ(card(workID).report, (RestoreReport{"2 of 2 in place.", false, false}));
    time.pass(60);
    EXPECT_EQ(card(workID).report, RestoreReport()) << "that was then";
}

TEST_F(LayoutsPaneTest, ManyLayoutsAreFilteredAndFolded) {
    for (int i = 0; i < 10; ++i)
        save("Élan " + std::to_string(i), homeID, {});
    pane.appear();
    EXPECT_TRUE(pane.content().offersFilter);
    EXPECT_EQ(shown(), "Desk: Work Play. Home:. ") << "the connected setup is open";
    EXPECT_EQ(pane.content().setups[1].layoutCount, 11U);
    pane.setExpanded(deskID, false);
    pane.setFilter("elan 3");
    EXPECT_EQ(shown(), "Home: Élan 3. ");
    pane.setFilter("none such");
    EXPECT_EQ(shown(), "");
    EXPECT_FALSE(pane.content().isEmpty());
    pane.deleteSetup(homeID);
    EXPECT_TRUE(pane.content().offersFilter) << "few are left, but the filter hides them";
}

TEST_F(LayoutsPaneTest, TellsOnlyOfRealChangesAndThatTimePasses) {
    int tellings = 0;
    const auto token = pane.changed.connect([&] { ++tellings; });
    pane.appear();
    EXPECT_EQ(tellings, 0);
    save("New", deskID, {});
    list.reload();
    EXPECT_EQ(tellings, 1) << "a layout saved from the menu shows up";
    EXPECT_EQ(card(workID).age, "just now");
    time.pass(90);
    EXPECT_EQ(card(workID).age, "1 minute ago");
}

} // namespace
} // namespace tavrin
