#include "desktop_test.h"
#include "support/desktop/sway_desktop.h"

#include <QFile>

namespace tavrin::desktop {

namespace {

const std::vector<Rect> twoDisplays{{0, 0, 1280, 800}, {1280, 0, 1024, 768}};

/// What is sway's own: tiling, workspaces, its socket and its configuration.
class SwayTest : public ProgramTest {
protected:
    SwayDesktop& sway() { return dynamic_cast<SwayDesktop&>(desktop()); }
};

TEST_F(SwayTest, ShortcutsOutliveAReloadAndAreLeftToTheUserWhoBindsThem) {
    beginWith(twoDisplays);
    const Rect saved{40, 60, 500, 400}, astray{700, 300, 300, 240};
    const auto window = open(client(), {.title = "Notes"}, saved);
    ASSERT_TRUE(program().saveLayout("Desk") && tray().choose({"Quit Tavrin"}));
    ASSERT_EQ(program().process().waitForExit(), 0);
    ASSERT_TRUE(bindFirstLayout(keyR, controlModifier | optionModifier) && program().start());
    const auto press = [&] {
        return desktop().keyboard().pressWith({Keyboard::controlKey, Keyboard::optionKey}, 'r');
    };
    // Reading the configuration again drops what programs bound.
    ASSERT_TRUE(sway().configure("# nothing new\n") && windows().place(window, astray));
    EXPECT_TRUE(waitUntil([&] { return press() && seen(window) == saved; }));
    ASSERT_TRUE(
        program().waitForRest() &&
        sway().configure("set $other Mod1\nbindsym Ctrl+$other+r exec touch $XDG_RUNTIME_DIR/pressed\n"));
    ASSERT_TRUE(windows().place(window, astray));
    EXPECT_TRUE(waitUntil([&] { return press() && QFile::exists(sway().runtime() + "/pressed"); }));
    EXPECT_EQ(seen(window), astray);
}

TEST_F(SwayTest, ATiledWindowGoesToItsDisplayAndStaysTiled) {
    beginWith(twoDisplays);
    auto& toolkit = toolkitClient();
    const auto tiled = toolkit.open({.applicationClass = "test-tiled", .title = "tiled"});
    ASSERT_TRUE(tiled &&
                sway().windows().tell(*tiled, QString("move container to output \"%1\", floating disable")
                                                  .arg(QString::fromStdString(outputs().name(1)))));
    const auto floating =
        open(toolkit, {.applicationClass = "test-editor", .title = "floating"}, {1300, 100, 400, 300});
    const auto hidden =
        open(toolkit, {.applicationClass = "test-editor", .title = "hidden"}, {60, 80, 400, 300});
    ASSERT_EQ(seen(*tiled), twoDisplays[1]);
    ASSERT_TRUE(program().saveLayout("Work"));

    ASSERT_TRUE(windows().place(floating, {200, 200, 500, 350}));
    ASSERT_TRUE(sway().windows().tell(*tiled, QString("move container to output \"%1\", floating disable")
                                                  .arg(QString::fromStdString(outputs().name(0)))));
    ASSERT_TRUE(sway().windows().tell(hidden, QString("move container to workspace \"far away\"")));
    ASSERT_TRUE(program().restoreLayout("Work"));
    EXPECT_EQ(seen(*tiled), twoDisplays[1]);
    EXPECT_TRUE(sway().windows().isTiled(*tiled));
    EXPECT_TRUE(waitUntil([&] { return seen(floating) == Rect{1300, 100, 400, 300}; })) << "drawn anew";
    EXPECT_FALSE(sway().windows().isShown(hidden)) << "it stays on its workspace";
}

} // namespace

} // namespace tavrin::desktop
