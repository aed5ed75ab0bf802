#include "desktop_test.h"

#include <gmock/gmock.h>

#include <csignal>

namespace tavrin::desktop {

namespace {

using ::testing::StartsWith;

/// What the program is for, on every desktop.
class MainJobTest : public ProgramTest {};

TEST_F(MainJobTest, EightWindowsOfThreeApplicationsComeBackEveryWay) {
    const std::vector<Rect> displays{{0, 0, 1280, 800}, {1280, 0, 1280, 800}};
    beginWith(displays);
    auto& toolkit = toolkitClient();
    const auto editor = [&](const std::string& title, const Rect& frame) {
        return open(toolkit, {.applicationClass = "test-editor", .title = title}, frame);
    };
    const auto mail = [&](const std::string& title, const Rect& frame) {
        return open(toolkit, {.applicationClass = "test-mail", .title = title}, frame);
    };
    const std::vector<WindowHandle> all{
        editor("Notes", {40, 60, 500, 400}),
        editor("Notes", {560, 60, 420, 330}),
        editor("Letter", {1300, 40, 480, 360}),
        mail("Inbox", {1800, 80, 460, 600}),
        mail("Draft", {200, 420, 501, 303}),
        open(client(), {.applicationClass = "Player", .title = "Film"}, {1400, 420, 380, 300}),
        mail("Address book", {720, 430, 333, 277}),
        // Partly off the screen, where every desktop lets the user do that.
        editor("List", {lacks(Ability::xDesktop) ? 2300.0 : 2150.0, 500, 380, 250}),
    };
    const auto saved = seenAll(all);
    ASSERT_TRUE(program().saveLayout("Desk") && program().makeDefault("Desk"));
    // A desktop may keep a place of its own for a tiled window, but not for one that was tiled before.
    const auto scatter = [&](const WindowHandle& tiled) {
        for (std::size_t i = 0; i < all.size(); ++i)
            ASSERT_TRUE(windows().place(all[i], {900.0 - 90 * double(i), 30.0 + 50 * double(i), 300, 240}));
        ASSERT_TRUE(windows().maximise(all[2]));
        ASSERT_TRUE(windows().makeFullscreen(all[3]));
        ASSERT_TRUE(lacks(Ability::tilesWindows) || windows().tileLeft(tiled));
    };
    scatter(all[4]);
    ASSERT_TRUE(program().restoreLayout("Desk"));
    EXPECT_EQ(seenAll(all), saved) << "by the menu";

    scatter(all[6]);
    ASSERT_TRUE(program().waitForRest());
    ASSERT_TRUE(outputs().unplug(1));
    ASSERT_TRUE(waitUntil([&] { return !program().offers("Desk"); }));
    ASSERT_TRUE(program().waitForRest());
    ASSERT_TRUE(outputs().plug(1, displays[1], MonitorIdentity{.serial = 2}));
    EXPECT_TRUE(program().waitForFeedback());
    EXPECT_EQ(seenAll(all), saved) << "by itself";

    ASSERT_TRUE(program().waitForRest() && tray().choose({"Quit Tavrin"}));
    ASSERT_EQ(program().process().waitForExit(), 0);
    ASSERT_TRUE(bindFirstLayout(keyR, controlModifier | optionModifier) && program().start());
    scatter(all[4]);
    windows().activate(all.front());
    ASSERT_TRUE(desktop().keyboard().pressWith({Keyboard::controlKey, Keyboard::optionKey}, 'r'));
    EXPECT_TRUE(waitUntil([&] { return seenAll(all) == saved; }, std::chrono::seconds(20)))
        << "by the shortcut: " << ::testing::PrintToString(seenAll(all));
}

TEST_F(MainJobTest, ACompositorThatStopsAnsweringIsSaidAndFoundAgain) {
    begin();
    auto* compositor = desktop().compositor();
    if (!compositor)
        GTEST_SKIP() << "X has a window manager for that";
    ASSERT_TRUE(program().start());
    ASSERT_THAT(program().menu(), StartsWith("Current Display Setup"));
    compositor->sendSignal(SIGSTOP);
    EXPECT_TRUE(waitUntil([&] { return program().menu().starts_with("Accessibility access is required"); }));
    compositor->sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return program().menu().starts_with("Current Display Setup"); }));
}

} // namespace

} // namespace tavrin::desktop
