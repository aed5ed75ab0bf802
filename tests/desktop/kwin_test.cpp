#include "desktop_test.h"
#include "support/desktop/kwin_desktop.h"

#include <QJsonObject>
#include <gmock/gmock.h>

#include <csignal>

namespace tavrin::desktop {

namespace {

using ::testing::StartsWith;

const std::vector<Rect> twoDisplays{{0, 0, 1280, 800}, {1280, 0, 1280, 800}};
const MonitorIdentity secondMonitor{.serial = 2};

/// What is Plasma's own: states of windows, global shortcuts, and a KWin that puts windows back by itself.
class KWinTest : public ProgramTest {
protected:
    void beginOnKWin() {
        begin({.displays = twoDisplays});
        if (kwin()) {
            ASSERT_TRUE(program().start());
        }
    }

    KWinDesktop* kwin() { return dynamic_cast<KWinDesktop*>(&desktop()); }
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

TEST_F(KWinTest, EightWindowsOfThreeApplicationsComeBackEveryWay) {
    beginOnKWin();
    if (!kwin())
        GTEST_SKIP() << "about KWin";
    auto& toolkit = toolkitClient();
    const std::vector<WindowHandle> all{
        open(toolkit, "test-editor", "Notes", {40, 60, 500, 400}),
        open(toolkit, "test-editor", "Notes", {560, 60, 420, 330}),
        open(toolkit, "test-editor", "Letter", {1300, 40, 480, 360}),
        open(toolkit, "test-mail", "Inbox", {1800, 80, 460, 600}),
        open(toolkit, "test-mail", "Draft", {200, 420, 501, 303}),
        open(client(), "Player", "Film", {1400, 420, 380, 300}),
        open(toolkit, "test-mail", "Address book", {720, 430, 333, 277}),
        open(toolkit, "test-editor", "List", {2300, 500, 380, 250}), // partly off the screen
    };
    const auto saved = seenAll(all);
    ASSERT_TRUE(program().saveLayout("Desk"));
    ASSERT_TRUE(program().makeDefault("Desk")) << program().menu();
    const auto scatter = [&] {
        for (std::size_t i = 0; i < all.size(); ++i)
            ASSERT_TRUE(windows().place(all[i], {900.0 - 90 * double(i), 30.0 + 50 * double(i), 300, 240}));
        ASSERT_TRUE(windows().maximise(all[2]));
        kwin()->windows().invoke(all[3], "Window Fullscreen");
        ASSERT_TRUE(waitUntil([&] { return seen(all[3]).height == 800; }));
    };
    // KWin keeps a place of its own for a tiled window, too; not for one that was tiled before.
    const auto tile = [&](const WindowHandle& window) {
        kwin()->windows().invoke(window, "Window Quick Tile Left");
        ASSERT_TRUE(waitUntil([&] { return seen(window).width == 640; }));
    };
    scatter();
    tile(all[4]);
    ASSERT_TRUE(program().restoreLayout("Desk"));
    EXPECT_EQ(seenAll(all), saved) << "by the menu";

    scatter();
    tile(all[6]);
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
    ASSERT_TRUE(desktop().keyboard().pressWith({Keyboard::controlKey, Keyboard::optionKey}, 'r'));
    EXPECT_TRUE(waitUntil([&] { return seenAll(all) == saved; }, std::chrono::seconds(20)))
        << "by the shortcut: " << ::testing::PrintToString(seenAll(all));
}

TEST_F(KWinTest, AKWinThatStopsAnsweringIsSaidAndFoundAgain) {
    beginOnKWin();
    if (!kwin())
        GTEST_SKIP() << "about KWin";
    ASSERT_THAT(program().menu(), StartsWith("Current Display Setup"));
    kwin()->compositor().sendSignal(SIGSTOP);
    EXPECT_TRUE(waitUntil([&] { return program().menu().starts_with("Accessibility access is required"); }));
    kwin()->compositor().sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return program().menu().starts_with("Current Display Setup"); }));
}

} // namespace

} // namespace tavrin::desktop
