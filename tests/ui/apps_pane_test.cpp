#include "settings_fixture.h"
#include "ui/apps_pane.h"

namespace tavrin {
namespace {

class AppsPaneTest : public ::testing::Test, public testing::SettingsFixture {
protected:
    AppsPane pane{settings, windows, catalog, 4711};
    ExclusionListView& view = pane.exclusions;

    using List = std::vector<std::string>;
    List stored() { return settings.load()->excludedBundleIDs; }
    bool add(std::string text) {
        view.setNewBundleID(std::move(text));
        const bool can = view.canAdd();
        view.add();
        return can;
    }
};

TEST_F(AppsPaneTest, TakesIdentifiersOfAtLeastTwoParts) {
    const auto expectAdded = [&](const std::string& typed, const List& added) {
        ASSERT_TRUE(settings.save({}));
        view.appear();
        EXPECT_EQ(add(typed), !added.empty()) << typed;
        EXPECT_EQ(stored(), added) << typed;
        EXPECT_EQ(view.excludedBundleIDs(), added);
        EXPECT_EQ(view.newBundleID(), added.empty() ? typed : "");
    };
    expectAdded("  org.gnome.gedit\n", {"org.gnome.gedit"});
    for (const std::string good : {"com.apple.finder", "a.b", "a-1.B2-"})
        expectAdded(good, {good});
    for (const std::string bad : {"", " \n", "finder", "com.1password", "com..finder", ".com.finder",
                                  "com.finder.", "com.my_app", "com.-app", "com.app le", "com.äpp"})
        expectAdded(bad, {});
}

TEST_F(AppsPaneTest, KeepsTheOrderRefusesDoublesAndLeavesOtherSettingsAlone) {
    AppSettings before{.autoRestoreOnWake = true, .excludedBundleIDs = {"z.z"}};
    ASSERT_TRUE(settings.save(before));
    view.appear();
    EXPECT_TRUE(add("b.b"));
    EXPECT_TRUE(add("B.b")) << "compared exactly";
    EXPECT_FALSE(add(" b.b "));
    view.remove("z.z");
    before.excludedBundleIDs = {"b.b", "B.b"};
    EXPECT_EQ(*settings.load(), before);
    view.remove("b.b");
    view.remove("B.b");
    EXPECT_TRUE(view.excludedBundleIDs().empty());
}

TEST_F(AppsPaneTest, OffersTheApplicationsWithOpenWindowsOnce) {
    auto own = testing::window(9, "Tavrin", "Settings", {0, 0, 100, 100});
    own.ownerPID = 4711;
    auto nameless = testing::window(8, "Nobody", "", {0, 0, 100, 100});
    nameless.bundleIdentifier.reset();
    windows.windows = {testing::window(1, "Editor", "a", {0, 0, 100, 100}), nameless, own,
                       testing::window(2, "Editor", "b", {0, 0, 100, 100}),
                       testing::window(3, "xterm", "c", {0, 0, 100, 100})};
    windows.windows.back().bundleIdentifier = "xterm";
    catalog.installed["xterm"] = {"xterm", "Terminal", "terminal"};
    view.appear();
    EXPECT_EQ(pane.openApplications(), (std::vector<ListedApplication>{{"Editor.desktop", "Editor", {}},
                                                                       {"xterm", "xterm", "terminal"}}));
    view.addRunning("xterm");
    view.addRunning("xterm");
    EXPECT_EQ(stored(), List{"xterm"}) << "an identifier that exists need not look like one";
    view.addRunning("Editor.desktop");
    view.addRunning("gone");
    EXPECT_EQ(pane.excludedApplications(), (std::vector<ListedApplication>{{"xterm", "Terminal", "terminal"},
                                                                           {"Editor.desktop", "Editor", {}},
                                                                           {"gone", "gone", {}}}));
    view.remove("Editor.desktop");
    EXPECT_EQ(pane.openApplications(), (std::vector<ListedApplication>{{"Editor.desktop", "Editor", {}}}));
}

} // namespace
} // namespace tavrin
