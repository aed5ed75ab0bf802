#include "desktop_test.h"
#include "support/desktop/embedding_panel.h"
#include "support/desktop/login_manager.h"
#include "support/desktop/mouse.h"

#include <QDBusVirtualObject>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <gmock/gmock.h>

namespace tavrin::desktop {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const Rect firstDisplay{0, 0, 1920, 1080};
const Rect secondDisplay{1920, 0, 1600, 1200};
const MonitorIdentity secondMonitor{.serial = 2};

class SessionTest : public ProgramTest {
protected:
    /// The menu as the panel has it, without opening it.
    std::string shownMenu() {
        const auto items = tray().readMenu();
        return items ? describe(*items) : std::string();
    }

    /// A window, a layout that holds it and is restored by itself, and the window somewhere else.
    void saveAndStray(const std::string& layout, const Rect& frame) {
        const auto opened = client().open({.title = "stray"});
        ASSERT_TRUE(opened && windows().place(*opened, frame));
        window_ = *opened;
        ASSERT_TRUE(program().saveLayout(layout) && program().makeDefault(layout));
        ASSERT_TRUE(windows().place(window_, {120, 140, 360, 280}));
    }

    WindowHandle window() const { return window_; }

    /// The outcome of exactly one restore shows, and no second one follows.
    void expectOneRestore() {
        const int before = tray().iconChanges();
        EXPECT_TRUE(program().waitForFeedback());
        EXPECT_TRUE(program().waitForRest());
        EXPECT_EQ(tray().iconChanges() - before, 2) << "there and back";
        expectNoRestore();
    }

    /// No outcome shows within the time that the program takes from an event to its restore, and some more.
    void expectNoRestore() {
        const int before = tray().iconChanges();
        EXPECT_FALSE(
            waitUntil([&] { return tray().iconChanges() != before; }, std::chrono::milliseconds(4000)));
    }

private:
    WindowHandle window_;
};

/// What only an X desktop has.
class XSessionTest : public SessionTest {};

// The whole menu, line by line, on the way from the first start to several setups.
TEST_F(SessionTest, TheMenuTellsTheStateItemByItem) {
    const std::string foot = "---\n"
                             "* Settings… [,]\n"
                             "---\n"
                             "Beta v0.1.0 — free during beta\n"
                             "* Quit Tavrin [q]\n";
    const std::string unknownSetup = "Current Display Setup\n"
                                     "No matched display setup yet\n"
                                     "No saved layout has been matched to the current display setup yet.\n"
                                     "---\n* Save Layout…\n---\nNo Display Setup Matched\n";
    const std::string knownSetup = "Current Display Setup\n"
                                   "2-Display Setup\n"
                                   "Exact display identity and arrangement match.\n"
                                   "---\n* Save Layout…\n";
    begin({.displays = {firstDisplay, secondDisplay}});
    ASSERT_TRUE(program().start());
    EXPECT_EQ(program().menu(), unknownSetup + foot);

    ASSERT_TRUE(program().openSaveForm());
    ASSERT_TRUE(desktop().keyboard().press(Keyboard::escapeKey));
    ASSERT_TRUE(waitUntil([&] { return !program().formArea(); }));
    EXPECT_EQ(program().menu(), knownSetup + "---\nRestore Layout\nNo Saved Layouts\n" + foot);

    const auto client = desktop().startClient();
    ASSERT_TRUE(client->open({.title = "something to save"}));
    ASSERT_TRUE(program().saveLayout("Desk") && program().makeDefault("Desk"));
    ASSERT_TRUE(program().saveLayout("Talk"));
    EXPECT_EQ(program().menu(), knownSetup +
                                    "* Update Layout >\n    * Desk\n    * Talk\n"
                                    "---\nRestore Layout\n* Desk (auto)\n* Talk\n" +
                                    foot);

    ASSERT_TRUE(outputs().unplug(1));
    ASSERT_TRUE(waitUntil([&] {
        return shownMenu().find("No matched display setup yet") != std::string::npos;
    })) << "the menu follows the displays without being opened";
    EXPECT_EQ(program().menu(), unknownSetup +
                                    "* Other Display Setups >\n    * 2-Display Setup >\n"
                                    "        * Desk (auto)\n        * Talk\n" +
                                    foot);

    if (lacks(Ability::xDesktop))
        return;
    xDesktop().stopWindowManager();
    ASSERT_TRUE(waitUntil([&] { return shownMenu().starts_with("Accessibility"); }));
    EXPECT_EQ(program().menu(), "Accessibility access is required\n"
                                "* Open Accessibility Settings [,]\n"
                                "* Recheck Permission [r]\n" +
                                    foot);
    EXPECT_EQ(tray().toolTip(), "Tavrin");
    // No browser is installed, so the program shows the page itself.
    ASSERT_TRUE(tray().choose({"Open Accessibility Settings"}));
    EXPECT_TRUE(waitUntil([&] { return program().formArea().has_value(); }));

    ASSERT_TRUE(tray().choose({"Quit Tavrin"}));
    EXPECT_EQ(program().process().waitForExit(), 0);
}

// Any program may write the property by which window managers announce themselves.
TEST_F(XSessionTest, AForgedAnnouncementDoesNotHideWhatComesAfterIt) {
    begin({});
    ASSERT_TRUE(program().start());
    const auto root = desktop().x().root();
    const auto truth = desktop().x().cardinals(root, "_NET_SUPPORTING_WM_CHECK").at(0);
    for (const auto& window : {root, truth}) {
        desktop().x().setCardinals(root, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, {window});
        for (int look = 0; look < 2; ++look)
            EXPECT_THAT(program().menu(), StartsWith("Current Display Setup"));
    }
    xDesktop().stopWindowManager();
    EXPECT_TRUE(waitUntil([&] { return shownMenu().starts_with("Accessibility access is required"); }));
}

// The variables of another session may have come along (nested servers, remote desktops, user services).
TEST_F(XSessionTest, TheServerSaysWhetherItIsABridgeNotTheEnvironment) {
    begin({});
    desktop().setVariable("XDG_SESSION_TYPE", "wayland");
    desktop().setVariable("WAYLAND_DISPLAY", "wayland-elsewhere");
    desktop().setVariable("XDG_CURRENT_DESKTOP", "KDE");
    ASSERT_TRUE(program().start());
    EXPECT_THAT(program().menu(), StartsWith("Current Display Setup"));
}

TEST_F(XSessionTest, ARestartedWindowManagerDoesNotLoseThePendingRestore) {
    begin({.displays = {firstDisplay, secondDisplay}});
    ASSERT_TRUE(program().start());
    const Rect saved{2300, 200, 700, 600};
    saveAndStray("Desk", saved);
    ASSERT_TRUE(outputs().unplug(1) && outputs().plug(1, secondDisplay, secondMonitor));
    xDesktop().stopWindowManager();
    ASSERT_TRUE(xDesktop().startWindowManager() && xDesktop().windows().waitUntilManaged(window()));
    EXPECT_TRUE(program().waitForFeedback());
    EXPECT_EQ(seen(window()), saved);
}

// A mirror image is one screen, and so are two panels that are used as one.
TEST_F(XSessionTest, ScreensOfSeveralOutputsCountOnce) {
    begin({});
    ASSERT_TRUE(program().start());
    ASSERT_TRUE(client().open({.title = "one"}));
    ASSERT_TRUE(outputs().plug(1, firstDisplay, secondMonitor));
    ASSERT_TRUE(program().saveLayout("Mirrored"));
    ASSERT_TRUE(outputs().unplug(1));
    ASSERT_TRUE(waitUntil([&] { return !program().offers("Mirrored"); }))
        << "the half of it is another screen";
    ASSERT_TRUE(outputs().plug(1, {1920, 0, 1920, 1080}, secondMonitor));
    const auto wall = QString::fromStdString(outputs().name(0) + "," + outputs().name(1));
    const auto xrandr = desktop().startProgram("xrandr", {"--setmonitor", "wall", "auto", wall});
    ASSERT_TRUE(xrandr && xrandr->waitForExit() == 0);
    ASSERT_TRUE(program().saveLayout("Wall"));
    const auto profiles = program().payload("profiles.json");
    ASSERT_EQ(profiles.toArray().size(), 2);
    const auto fingerprint = [&](int profile) { return profiles[profile]["displayFingerprint"]; };
    for (const int profile : {0, 1}) {
        EXPECT_EQ(profiles[profile]["name"].toString(), "External Display");
        EXPECT_EQ(fingerprint(profile)["displayCount"].toInt(), 1);
        EXPECT_EQ(fingerprint(profile)["stableDisplayIDs"], fingerprint(0)["stableDisplayIDs"]);
        EXPECT_THAT(fingerprint(profile)["stableDisplayIDs"][0].toString().toStdString(), HasSubstr("+"));
    }
    EXPECT_THAT(fingerprint(1)["arrangementSignature"].toString().toStdString(), HasSubstr(":3840x1080"));
}

TEST_F(SessionTest, WakingAndUnlockingRestoreWhenTheUserWantsIt) {
    begin({});
    LoginManager logind(desktop().systemBus().connection());
    ASSERT_TRUE(logind.appear());
    ASSERT_TRUE(program().start());
    const Rect saved{700, 300, 500, 400};
    saveAndStray("Desk", saved);

    const auto allow = [&](bool onWake, bool onUnlock) {
        return program().setPayload("settings.json", QJsonObject{{"autoRestoreOnConnect", false},
                                                                 {"autoRestoreOnDisconnect", false},
                                                                 {"autoRestoreOnWake", onWake},
                                                                 {"autoRestoreOnUnlockLogin", onUnlock}});
    };
    const auto unlock = [&] {
        logind.lock();
        logind.unlock();
    };
    ASSERT_TRUE(allow(false, false));
    unlock();
    logind.sleepAndWake();
    expectNoRestore();

    ASSERT_TRUE(allow(true, false));
    logind.sleepAndWake();
    EXPECT_TRUE(program().waitForFeedback());
    EXPECT_EQ(seen(window()), saved) << "after waking";

    ASSERT_TRUE(windows().place(window(), {120, 140, 360, 280}));
    ASSERT_TRUE(allow(false, true) && program().waitForRest());
    unlock();
    EXPECT_TRUE(program().waitForFeedback());
    EXPECT_EQ(seen(window()), saved) << "after unlocking";

    if (lacks(Ability::xDesktop))
        return;
    // A start at login, where the window manager comes later.
    ASSERT_TRUE(program().waitForRest() && tray().choose({"Quit Tavrin"}));
    ASSERT_EQ(program().process().waitForExit(), 0);
    ASSERT_TRUE(windows().place(window(), {120, 140, 360, 280}));
    xDesktop().stopWindowManager();
    logind.beginSession();
    ASSERT_TRUE(program().start() && xDesktop().startWindowManager());
    expectOneRestore();
    EXPECT_EQ(seen(window()), saved) << "after logging in";
}

TEST_F(SessionTest, AShortcutWorksWhoeverHasTheKeyboard) {
    begin({});
    ASSERT_TRUE(program().start());
    const Rect saved{700, 300, 500, 400};
    saveAndStray("Desk", saved);
    ASSERT_TRUE(tray().choose({"Quit Tavrin"}));
    ASSERT_EQ(program().process().waitForExit(), 0);

    ASSERT_TRUE(bindFirstLayout(keyR, controlModifier));
    LoginManager logind(desktop().systemBus().connection());
    ASSERT_TRUE(logind.appear());
    ASSERT_TRUE(program().start());
    EXPECT_THAT(program().menu(), HasSubstr("* Desk (auto) [Control+R]"));

    windows().activate(window());
    ASSERT_TRUE(waitUntil([&] {
        const auto pid = windows().processWithKeyboard();
        return pid != 0 && pid != program().process().pid();
    }));
    logind.lock();
    ASSERT_FALSE(program().menu().empty()); // it has heard of the lock by now
    EXPECT_TRUE(desktop().keyboard().pressWith(Keyboard::controlKey, 'r'));
    expectNoRestore();
    logind.unlock();
    ASSERT_FALSE(program().menu().empty());
    if (!lacks(Ability::xDesktop)) { // a locker that tells nobody
        auto* x = desktop().x().raw();
        xcb_grab_pointer(x, 0, desktop().x().root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, 0, 0, 0);
        xcb_grab_keyboard(x, 0, desktop().x().root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        EXPECT_TRUE(desktop().keyboard().pressWith(Keyboard::controlKey, 'r'));
        expectNoRestore();
        xcb_ungrab_keyboard(x, 0);
        xcb_ungrab_pointer(x, 0);
    }
    EXPECT_TRUE(desktop().keyboard().pressWith(Keyboard::controlKey, 'r'));
    EXPECT_TRUE(program().waitForFeedback());
    EXPECT_EQ(seen(window()), saved);

    ASSERT_TRUE(windows().place(window(), {120, 140, 360, 280}) && tray().choose({"Settings…"}));
    ASSERT_TRUE(waitUntil([&] { return windows().processWithKeyboard() == program().process().pid(); }));
    ASSERT_TRUE(program().waitForRest());
    EXPECT_TRUE(desktop().keyboard().pressWith(Keyboard::controlKey, 'r'));
    EXPECT_TRUE(program().waitForFeedback()) << "a window of its own has the keyboard";
    EXPECT_EQ(seen(window()), saved);
}

TEST_F(SessionTest, ASecondCopyHandsOverAndAKilledOneLeavesNothingInTheWay) {
    begin({});
    ASSERT_TRUE(program().start());
    TavrinProgram second(desktop());
    // One that is started in the same moment leaves the first alone: the user asked once.
    for (int attempt = 0; attempt < 10 && !windows().find("Tavrin Settings"); ++attempt) {
        ASSERT_TRUE(second.launch());
        EXPECT_EQ(second.process().waitForExit(), 0);
        waitUntil([&] { return windows().find("Tavrin Settings").has_value(); },
                  std::chrono::milliseconds(300));
    }
    EXPECT_TRUE(windows().find("Tavrin Settings")) << "the first is brought forward";
    EXPECT_TRUE(program().process().isRunning());
    EXPECT_THAT(program().menu(), HasSubstr("Quit Tavrin"));

    if (lacks(Ability::xDesktop))
        return;
    // A test host's copy and one on another display of the user run beside it.
    XServer otherServer;
    const auto folder = desktop().logs() + "/other";
    ASSERT_TRUE(QDir().mkpath(folder) && otherServer.start(folder, desktop().environment()));
    for (const auto* variable : {"XCTestConfigurationFilePath=x", "DISPLAY="}) {
        auto setting = QString(variable);
        if (setting.endsWith('='))
            setting += otherServer.display();
        tray().disappear();
        ASSERT_TRUE(tray().appear() && tray().waitForItem());
        const auto first = tray().item();
        const auto beside = desktop().startProgram(
            "env", {setting, qEnvironmentVariable("TAVRIN_PROGRAM", TAVRIN_PROGRAM_PATH)});
        EXPECT_TRUE(waitUntil([&] { return tray().hasItem() && tray().item() != first; })) << variable;
        EXPECT_TRUE(beside->isRunning() && program().process().isRunning());
    }
    tray().disappear();
    ASSERT_TRUE(tray().appear() && tray().waitForItem());

    program().process().kill();
    ASSERT_TRUE(waitUntil([&] { return !tray().hasItem(); }));
    EXPECT_TRUE(second.start());
    EXPECT_THAT(second.menu(), HasSubstr("Quit Tavrin"));
}

TEST_F(SessionTest, ATrayThatAppearsLateOrRestartsGetsTheItem) {
    begin({.hasTray = false});
    ASSERT_TRUE(program().launch() && program().waitUntilRegistered());
    for (const auto* when : {"late", "restarted"}) {
        ASSERT_TRUE(tray().appear());
        EXPECT_TRUE(waitUntil([&] {
            return tray().hasItem() && program().menu().find("Quit Tavrin") != std::string::npos;
        })) << when;
        tray().disappear();
    }
}

/// A panel that owns the name and answers nothing.
class HungPanel : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        return message.setDelayedReply(true), true;
    }
};

TEST_F(SessionTest, AHungTrayIsNotWaitedFor) {
    begin({.hasTray = false});
    HungPanel panel;
    auto bus = desktop().sessionBus().connection();
    ASSERT_TRUE(bus.registerVirtualObject("/StatusNotifierWatcher", &panel));
    ASSERT_TRUE(bus.registerService("org.kde.StatusNotifierWatcher"));
    ASSERT_TRUE(program().launch());
    EXPECT_TRUE(windows().waitForTitle("Tavrin Settings")) << "the first start shows that it runs";
    bus.unregisterService("org.kde.StatusNotifierWatcher");
    bus.unregisterObject("/StatusNotifierWatcher");
    EXPECT_TRUE(tray().appear() && tray().waitForItem());
}

// Panels without a status area over the bus embed a window instead.
class EmbeddingPanelTest : public SessionTest, public ::testing::WithParamInterface<bool> {};

TEST_P(EmbeddingPanelTest, GetsTheIconAndAClickOpensTheMenu) {
    const bool isPanelFirst = GetParam();
    begin({.hasTray = false});
    EmbeddingPanel panel(xDesktop().server().display().toStdString());
    ASSERT_TRUE(!isPanelFirst || panel.appear());
    ASSERT_TRUE(program().launch());
    ASSERT_TRUE(isPanelFirst || (program().waitUntilRegistered() && panel.appear()));
    const auto icon = panel.waitForIcon();
    ASSERT_TRUE(icon);

    Mouse mouse(desktop().x());
    mouse.click(*icon, Mouse::Button::right);
    ASSERT_TRUE(waitUntil([&] { return program().formArea().has_value(); })) << "the menu";
    const Rect menu = *program().formArea();
    constexpr double halfAnItem = 10;
    mouse.click({menu.x, menu.maxY() - 2 * halfAnItem, menu.width, 2 * halfAnItem}); // the last item
    EXPECT_EQ(program().process().waitForExit(), 0) << "\"Quit Tavrin\" was chosen";
}

std::string whichIsFirst(const ::testing::TestParamInfo<bool>& test) {
    return test.param ? "PanelFirst" : "ProgramFirst";
}
INSTANTIATE_TEST_SUITE_P(Order, EmbeddingPanelTest, ::testing::Bool(), whichIsFirst);

} // namespace

} // namespace tavrin::desktop
