#include "desktop_test.h"

#include <QJsonArray>
#include <gmock/gmock.h>

namespace tavrin::desktop {

namespace {

using ::testing::HasSubstr;
using ::testing::UnorderedElementsAreArray;

const std::vector<Rect> oneDisplay{{0, 0, 1920, 1080}};
const std::vector<Rect> twoDisplays{{0, 0, 1920, 1080}, {1920, 0, 1600, 1200}};

bool contains(const Rect& outer, const Rect& inner) {
    return unionOf(outer, inner) == outer;
}

class RestoreTest : public ProgramTest {
protected:
    WindowHandle open(const WindowRequest& request, const Rect& frame) {
        return ProgramTest::open(client(), request, frame);
    }

    enum class Hiding { minimised, onAnotherDesktop };
    bool hide(WindowHandle window, Hiding how) {
        if (how == Hiding::onAnotherDesktop)
            return xDesktop().windows().sendToDesktop(window, 1);
        xDesktop().windows().minimise(window);
        return waitUntil([&] { return xDesktop().windows().hasState(window, "_NET_WM_STATE_HIDDEN"); });
    }
};

/// What only an X desktop has.
class XRestoreTest : public RestoreTest {};

// Every kind of window that people have, on every display: back to the pixel, however it draws its borders.
class EveryKindOfWindow : public RestoreTest, public ::testing::WithParamInterface<std::vector<Rect>> {};

TEST_P(EveryKindOfWindow, ComesBackToThePixel) {
    beginWith(GetParam());
    const Rect& last = GetParam().back();
    const auto terminal = desktop().startProgram("xterm", {"-T", "terminal"});
    const auto xterm = windows().waitForTitle("terminal");
    ASSERT_TRUE(terminal && xterm);
    const std::vector<WindowHandle> all{
        open({.applicationClass = "Editor", .title = "plain"}, {100, 80, 500, 400}),
        open({.applicationClass = "Editor", .title = "dialog", .type = "DIALOG"}, {640, 80, 320, 240}),
        open({.applicationClass = "Player", .title = "bare", .isDecorated = false}, {40, 560, 480, 360}),
        open({.applicationClass = "Files",
              .title = "shadowed",
              .isDecorated = false,
              .shadow = {26, 26, 23, 29}},
             {last.x + 700, last.y + 300, 640, 480}),
        open({.applicationClass = "Cells", .title = "stepped", .increment = {9, 18}},
             {last.x + 50, last.y + 50, 463, 403}),
        *xterm,
    };
    ASSERT_TRUE(windows().place(*xterm, {last.x + 300, last.y + 500, 600, 400}));
    const auto saved = seenAll(all);
    ASSERT_TRUE(program().saveLayout("Work"));

    for (std::size_t index = 0; index < all.size(); ++index)
        ASSERT_TRUE(windows().place(all[index], {30.0 + 60.0 * double(index), 40.0 + 30.0 * double(index),
                                                 300.0 + 20.0 * double(index), 280}));
    ASSERT_NE(seenAll(all), saved);
    ASSERT_TRUE(program().restoreLayout("Work"));
    EXPECT_EQ(seenAll(all), saved);
}

std::string countOfDisplays(const ::testing::TestParamInfo<std::vector<Rect>>& test) {
    return "On" + std::to_string(test.param.size());
}
INSTANTIATE_TEST_SUITE_P(Displays, EveryKindOfWindow, ::testing::Values(oneDisplay, twoDisplays),
                         countOfDisplays);

TEST_F(RestoreTest, WindowsOfALostDisplayAllEndInsideTheOneThatIsLeft) {
    beginWith(twoDisplays);
    const std::vector<WindowHandle> all{
        open({.title = "left"}, {100, 100, 600, 500}),
        open({.title = "right"}, {2100, 100, 900, 700}),
        open({.title = "corner"}, {3120, 900, 400, 300}),
        open({.title = "large"}, {1930, 10, 1580, 1180}),
    };
    ASSERT_TRUE(program().saveLayout("Desk"));
    ASSERT_TRUE(outputs().unplug(1));
    ASSERT_TRUE(waitUntil([&] { return !program().offers("Desk"); })) << "another setup is connected now";
    ASSERT_TRUE(program().restoreBy({"Other Display Setups", "2-Display Setup", "Desk"}));
    for (const auto& window : all)
        EXPECT_TRUE(contains(oneDisplay.front(), seen(window)))
            << windows().title(window) << " at " << ::testing::PrintToString(seen(window));
}

TEST_F(XRestoreTest, OnlyWhatIsSeenIsSaved) {
    beginWith(oneDisplay);
    const auto seenOne = open({.applicationClass = "Editor", .title = "seen"}, {100, 100, 600, 500});
    const auto minimised = open({.applicationClass = "Files", .title = "minimised"}, {200, 200, 600, 500});
    const auto shaded = open({.applicationClass = "Mail", .title = "shaded"}, {300, 300, 600, 500});
    const auto elsewhere = open({.applicationClass = "Map", .title = "elsewhere"}, {400, 300, 600, 500});
    ASSERT_TRUE(xDesktop().windows().sendToDesktop(elsewhere, 1));
    xDesktop().windows().minimise(minimised);
    xDesktop().windows().shade(shaded);
    ASSERT_TRUE(waitUntil([&] {
        return xDesktop().windows().hasState(minimised, "_NET_WM_STATE_HIDDEN") &&
               xDesktop().windows().hasState(shaded, "_NET_WM_STATE_SHADED");
    }));
    ASSERT_TRUE(program().saveLayout("Work"));
    const auto entries = program().payload("layouts.json")[0]["entries"].toArray();
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0]["windowTitle"].toString().toStdString(), windows().title(seenOne));
}

TEST_F(XRestoreTest, WindowsOnEveryMonitorAreSavedWhereEachHasADesktopOfItsOwn) {
    begin({.displays = twoDisplays, .windowManager = "i3"});
    ASSERT_TRUE(program().start());
    const auto left = open({.applicationClass = "Editor", .title = "left"}, {100, 100, 600, 500});
    const auto right = open({.applicationClass = "Mail", .title = "right"}, {2100, 100, 900, 700});
    open({.applicationClass = "Map", .title = "hidden"}, {300, 300, 600, 500});
    const auto tiled = open({.applicationClass = "Term", .title = "tiled"}, {2000, 100, 500, 400});
    const auto tell = [&](const QString& command) {
        const auto teller = desktop().startProgram("i3-msg", {command});
        return teller && teller->waitForExit() == 0;
    };
    ASSERT_TRUE(tell("[title=\"hidden\"] move container to workspace 9") &&
                tell("[title=\"tiled\"] floating disable"));
    ASSERT_TRUE(waitUntil([&] { return seen(tiled).width == twoDisplays[1].width; }));
    const auto saved = seenAll({left, right, tiled});
    ASSERT_TRUE(program().saveLayout("Work"));
    EXPECT_EQ(program().payload("layouts.json")[0]["entries"].toArray().size(), 3);
    // A tiled one can only be brought to its monitor, where i3 has all of it to give.
    ASSERT_TRUE(tell(QString("[title=\"tiled\"] move container to output ") +
                     QString::fromStdString(outputs().name(0))));
    ASSERT_TRUE(waitUntil([&] { return seen(tiled).x < twoDisplays[1].x; }));
    ASSERT_TRUE(windows().place(left, {50, 400, 500, 400}) && windows().place(right, {2500, 300, 600, 500}));
    ASSERT_TRUE(program().restoreLayout("Work"));
    EXPECT_EQ(seenAll({left, right, tiled}), saved);
}

TEST_F(RestoreTest, AMaximisedWindowGoesBackToItsFrame) {
    beginWith(oneDisplay);
    const auto wasNormal = open({.applicationClass = "Mail", .title = "normal"}, {300, 200, 700, 500});
    const auto wasMaximised = open({.applicationClass = "Map", .title = "maximised"}, {500, 300, 600, 400});
    ASSERT_TRUE(windows().maximise(wasMaximised));
    const auto saved = seenAll({wasNormal, wasMaximised});
    ASSERT_TRUE(program().saveLayout("Mixed"));

    ASSERT_TRUE(windows().maximise(wasNormal));
    ASSERT_TRUE(windows().unmaximise(wasMaximised));
    ASSERT_TRUE(windows().place(wasMaximised, {100, 100, 400, 300}));
    ASSERT_TRUE(program().restoreLayout("Mixed"));
    EXPECT_EQ(seenAll({wasNormal, wasMaximised}), saved);
}

// Nothing but its number tells the listed window from its hidden twin.
TEST_F(XRestoreTest, TheWindowThatIsSeenMovesAndItsHiddenTwinStays) {
    beginWith(oneDisplay);
    const Rect saved{200, 150, 600, 400}, astray{900, 500, 500, 350};
    const auto first = open({.title = "Untitled"}, saved), second = open({.title = "Untitled"}, astray);
    for (const auto how : {Hiding::minimised, Hiding::onAnotherDesktop})
        for (const auto& [seenOne, hiddenOne] : {std::pair{first, second}, std::pair{second, first}}) {
            windows().activate(seenOne);
            ASSERT_TRUE(windows().place(seenOne, saved) && windows().place(hiddenOne, astray));
            ASSERT_TRUE(hide(hiddenOne, how));
            const std::string name = "Seen " + std::to_string(seenOne);
            ASSERT_TRUE(program().saveLayout(name));
            ASSERT_TRUE(windows().place(seenOne, astray));
            ASSERT_TRUE(program().restoreLayout(name));
            EXPECT_EQ(seen(seenOne), saved);
            // Openbox moves a window about while it draws how it is minimised.
            ASSERT_TRUE(xDesktop().windows().show(hiddenOne));
            EXPECT_TRUE(waitUntil([&] { return seen(hiddenOne) == astray; })) << "the hidden one moved";
        }
}

TEST_F(XRestoreTest, AWindowThatMakesItselfFullscreenAgainIsNoSuccess) {
    beginWith(oneDisplay);
    const auto window = open({.title = "film"}, {300, 200, 700, 500});
    ASSERT_TRUE(program().saveLayout("Film"));
    ASSERT_TRUE(windows().place(window, {100, 100, 600, 400}));
    ASSERT_TRUE(program().restoreLayout("Film"));
    const auto success = tray().picture();
    ASSERT_TRUE(client().stayFullscreen(window));
    ASSERT_TRUE(program().restoreLayout("Film"));
    EXPECT_NE(tray().picture(), success);
    EXPECT_TRUE(windows().isFullscreen(window));
}

TEST_F(RestoreTest, AHungApplicationStopsNoOther) {
    beginWith(oneDisplay);
    const auto hanging = desktop().startClient();
    const auto stuck = hanging->open({.applicationClass = "Stuck", .title = "stuck"});
    ASSERT_TRUE(stuck && windows().place(*stuck, {100, 100, 400, 300}));
    const auto lively = open({.applicationClass = "Zebra", .title = "lively"}, {900, 500, 500, 400});
    const auto saved = seenAll({*stuck, lively});
    ASSERT_TRUE(program().saveLayout("Work"));
    for (const auto& window : {*stuck, lively})
        ASSERT_TRUE(windows().place(window, {300, 300, 350, 280}));
    hanging->hang();
    ASSERT_TRUE(program().restoreLayout("Work"));
    EXPECT_EQ(seenAll({*stuck, lively}), saved);
    hanging->resume();
}

TEST_F(XRestoreTest, NothingMovesWhenEverythingIsInPlace) {
    beginWith(twoDisplays);
    const auto nearby = open({.title = "nearby"}, {100, 100, 400, 300});
    open({.applicationClass = "Bare", .title = "far", .isDecorated = false}, {2200, 300, 600, 500});
    ASSERT_TRUE(program().saveLayout("Still"));
    EXPECT_FALSE(desktop().x().takeMoves().empty()) << "opening them counted";
    ASSERT_TRUE(program().restoreLayout("Still"));
    EXPECT_EQ(desktop().x().takeMoves().size(), 0U);

    // Two points off still counts as in place, three do not.
    for (const auto& [offset, returns] : {std::pair{2.0, false}, std::pair{3.0, true}}) {
        ASSERT_TRUE(windows().place(nearby, {100 + offset, 100, 400, 300}));
        ASSERT_TRUE(program().restoreLayout("Still"));
        EXPECT_EQ(seen(nearby).x, returns ? 100 : 100 + offset);
    }
}

} // namespace

} // namespace tavrin::desktop
