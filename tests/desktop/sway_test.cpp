#include "desktop_test.h"
#include "support/desktop/sway_desktop.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <gmock/gmock.h>

#include <csignal>

namespace tavrin::desktop {

namespace {

using ::testing::StartsWith;

const std::vector<Rect> twoDisplays{{0, 0, 1280, 800}, {1280, 0, 1024, 768}};
const MonitorIdentity secondMonitor{.serial = 2};

/// What is sway's own: tiling, workspaces, its socket and its configuration.
class SwayTest : public ProgramTest {
protected:
    void beginOnSway(const std::vector<Rect>& displays = twoDisplays) {
        begin({.displays = displays});
        if (sway()) {
            ASSERT_TRUE(program().start());
        }
    }

    SwayDesktop* sway() { return dynamic_cast<SwayDesktop*>(&desktop()); }
    TestClient& toolkitClient() {
        if (!toolkitClient_)
            toolkitClient_ = desktop().startToolkitClient();
        return *toolkitClient_;
    }

    WindowHandle open(TestClient& client, const std::string& name, const std::string& title,
                      const Rect& frame) {
        const auto window = client.open({.applicationClass = name, .title = title});
        EXPECT_TRUE(window && windows().place(*window, frame)) << title;
        return window.value_or(WindowHandle());
    }

    std::vector<Rect> seenAll(const std::vector<WindowHandle>& all) {
        std::vector<Rect> frames;
        for (const auto& window : all)
            frames.push_back(seen(window));
        return frames;
    }

    /// The restore that is bound to a key, pressed.
    bool bindShortcut(const QString& layout) {
        constexpr int keyR = 15, control = 0x40000, option = 0x80000;
        QJsonObject settings;
        for (const auto* trigger : {"Connect", "Disconnect", "Wake", "UnlockLogin"})
            settings[QString("autoRestoreOn") + trigger] = false;
        settings["layoutShortcuts"] =
            QJsonObject{{layout, QJsonObject{{"keyCode", keyR}, {"modifiers", control | option}}}};
        return program().setPayload("settings.json", settings);
    }

private:
    std::unique_ptr<TestClient> toolkitClient_;
};

TEST_F(SwayTest, EightWindowsOfThreeApplicationsComeBackEveryWay) {
    beginOnSway();
    if (!sway())
        GTEST_SKIP() << "about sway";
    auto& toolkit = toolkitClient();
    const std::vector<WindowHandle> all{
        open(toolkit, "test-editor", "Notes", {40, 60, 500, 400}),
        open(toolkit, "test-editor", "Notes", {560, 60, 420, 330}),
        open(toolkit, "test-editor", "Letter", {1300, 40, 480, 360}),
        open(toolkit, "test-mail", "Inbox", {1800, 80, 460, 600}),
        open(toolkit, "test-mail", "Draft", {200, 420, 501, 303}),
        open(client(), "Player", "Film", {1400, 420, 380, 300}),
        open(toolkit, "test-mail", "Address book", {720, 430, 333, 277}),
        open(toolkit, "test-editor", "List", {5, 500, 180, 250}),
    };
    const auto saved = seenAll(all);
    ASSERT_TRUE(program().saveLayout("Desk") && program().makeDefault("Desk"));
    const auto scatter = [&] {
        for (std::size_t i = 0; i < all.size(); ++i)
            ASSERT_TRUE(windows().place(all[i], {900.0 - 90 * double(i), 30.0 + 50 * double(i), 300, 240}));
    };
    scatter();
    ASSERT_TRUE(windows().maximise(all[2]));
    ASSERT_TRUE(program().restoreLayout("Desk"));
    EXPECT_EQ(seenAll(all), saved) << "by the menu";

    scatter();
    ASSERT_TRUE(program().waitForRest());
    ASSERT_TRUE(outputs().unplug(1));
    ASSERT_TRUE(waitUntil([&] { return !program().offers("Desk"); }));
    ASSERT_TRUE(program().waitForRest());
    ASSERT_TRUE(outputs().plug(1, twoDisplays[1], secondMonitor));
    EXPECT_TRUE(program().waitForFeedback());
    EXPECT_EQ(seenAll(all), saved) << "by itself";

    ASSERT_TRUE(program().waitForRest() && tray().choose({"Quit Tavrin"}));
    ASSERT_EQ(program().process().waitForExit(), 0);
    ASSERT_TRUE(bindShortcut(program().payload("layouts.json")[0]["id"].toString()));
    ASSERT_TRUE(program().start());
    scatter();
    windows().activate(all.front());
    const auto press = [&] {
        return desktop().keyboard().pressWith({Keyboard::controlKey, Keyboard::optionKey}, 'r');
    };
    ASSERT_TRUE(press() && program().waitForFeedback());
    EXPECT_EQ(seenAll(all), saved) << "by the shortcut";

    // Reading the configuration again drops what programs bound.
    ASSERT_TRUE(program().waitForRest() && sway()->configure("# nothing new\n"));
    scatter();
    EXPECT_TRUE(waitUntil([&] { return press() && seenAll(all) == saved; }));
    // What the user binds is the user's.
    ASSERT_TRUE(
        program().waitForRest() &&
        sway()->configure("set $other Mod1\nbindsym Ctrl+$other+r exec touch $XDG_RUNTIME_DIR/pressed\n"));
    scatter();
    EXPECT_TRUE(waitUntil([&] { return press() && QFile::exists(sway()->runtime() + "/pressed"); }));
    EXPECT_NE(seenAll(all), saved);
}

TEST_F(SwayTest, ATiledWindowGoesToItsDisplayAndStaysTiled) {
    beginOnSway();
    if (!sway())
        GTEST_SKIP() << "about sway";
    auto& toolkit = toolkitClient();
    const auto tiled = toolkit.open({.applicationClass = "test-tiled", .title = "tiled"});
    ASSERT_TRUE(tiled &&
                sway()->windows().tell(*tiled, QString("move container to output \"%1\", floating disable")
                                                   .arg(QString::fromStdString(outputs().name(1)))));
    const auto floating = open(toolkit, "test-editor", "floating", {1300, 100, 400, 300});
    const auto hidden = open(toolkit, "test-editor", "hidden", {60, 80, 400, 300});
    ASSERT_EQ(seen(*tiled), twoDisplays[1]);
    ASSERT_TRUE(program().saveLayout("Work"));

    ASSERT_TRUE(windows().place(floating, {200, 200, 500, 350}));
    ASSERT_TRUE(sway()->windows().tell(*tiled, QString("move container to output \"%1\", floating disable")
                                                   .arg(QString::fromStdString(outputs().name(0)))));
    ASSERT_TRUE(sway()->windows().tell(hidden, QString("move container to workspace \"far away\"")));
    ASSERT_TRUE(program().restoreLayout("Work"));
    EXPECT_EQ(seen(*tiled), twoDisplays[1]);
    EXPECT_TRUE(sway()->windows().isTiled(*tiled));
    EXPECT_TRUE(waitUntil([&] { return seen(floating) == Rect{1300, 100, 400, 300}; })) << "drawn anew";
    EXPECT_FALSE(sway()->windows().isShown(hidden)) << "it stays on its workspace";
}

TEST_F(SwayTest, ACompositorThatStopsAnsweringIsSaidAndFoundAgain) {
    beginOnSway();
    if (!sway())
        GTEST_SKIP() << "about sway";
    ASSERT_THAT(program().menu(), StartsWith("Current Display Setup"));
    sway()->compositor().sendSignal(SIGSTOP);
    EXPECT_TRUE(waitUntil([&] { return program().menu().starts_with("Accessibility access is required"); }));
    sway()->compositor().sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return program().menu().starts_with("Current Display Setup"); }));
}

} // namespace

} // namespace tavrin::desktop
