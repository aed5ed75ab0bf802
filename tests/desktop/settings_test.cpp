#include "desktop_test.h"
#include "support/desktop/mouse.h"

#include <QFile>
#include <QFileSystemWatcher>
#include <QJsonArray>
#include <QJsonObject>

namespace tavrin::desktop {

namespace {

constexpr std::uint32_t tabKey = 0xff09, rightKey = 0xff53, downKey = 0xff54, f2Key = 0xffbf,
                        deleteKey = 0xffff, spaceKey = ' ';
constexpr int keyR = 15, control = 0x40000;
constexpr auto settingsTitle = "Tavrin Settings";
constexpr std::chrono::milliseconds attemptLimit{2000};
enum Pane { layouts, automation, shortcuts, apps, advanced };

/// The settings window, operated by keyboard and mouse.
class SettingsTest : public ProgramTest {
protected:
    const Rect saved{700, 300, 500, 400};
    const Rect astray{60, 80, 360, 280};

    /// A running program with the layout "Desk" of one window, which has been moved away since.
    void beginWithLayout() {
        begin();
        ASSERT_TRUE(program().start());
        const auto opened = client().open({.title = "stray"});
        ASSERT_TRUE(opened && windows().place(*opened, saved));
        window_ = *opened;
        ASSERT_TRUE(program().saveLayout("Desk") && windows().place(window_, astray));
        dataChanges_.addPath(desktop().home() + "/.local/share/Tavrin");
    }

    WindowHandle window() const { return window_; }
    std::optional<WindowHandle> settingsWindow() { return windows().find(settingsTitle); }

    bool closeSettings() {
        if (const auto shown = settingsWindow())
            windows().close(*shown);
        return waitUntil([&] { return !settingsWindow(); });
    }
    /// Opens the window anew on that pane, with the focus in the list of panes.
    bool openSettings(Pane pane) {
        return closeSettings() && tray().choose({"Settings…"}) && windows().waitForTitle(settingsTitle) &&
               waitUntil([&] { return windows().processWithKeyboard() == program().process().pid(); }) &&
               press(downKey, pane);
    }
    bool press(std::uint32_t key, int times = 1) {
        for (; times > 0; --times)
            if (!desktop().keyboard().press(key))
                return false;
        return true;
    }
    bool giveKeyboardToTheOtherApplication() {
        windows().activate(window_);
        return waitUntil(
            [&] {
                const auto pid = windows().processWithKeyboard();
                return pid != 0 && pid != program().process().pid();
            },
            attemptLimit);
    }
    bool pressShortcut() { return desktop().keyboard().pressWith(Keyboard::controlKey, 'r'); }
    /// Presses the shortcut while the other application has the keyboard, until it restores: the program may
    /// still be bringing its window forward, and for a moment after it lost the keyboard it takes a press for
    /// its own.
    bool shortcutRestores() {
        if (!windows().place(window_, astray))
            return false;
        for (int attempt = 0; attempt < 5; ++attempt)
            if (giveKeyboardToTheOtherApplication() && pressShortcut() &&
                waitUntil([&] { return seen(window_) == saved; }, attemptLimit))
                return true;
        return false;
    }

    QJsonValue setting(const QString& key) { return program().payload("settings.json")[key]; }
    QJsonObject shortcutOfLayout() {
        return setting("layoutShortcuts")[program().payload("layouts.json")[0]["id"].toString()].toObject();
    }
    bool becomes(const QString& key, const QJsonValue& wanted) {
        return waitUntil([&] { return setting(key) == wanted; });
    }

private:
    WindowHandle window_;
    QFileSystemWatcher dataChanges_; ///< wakes whoever waits for them
};

TEST_F(SettingsTest, ARecordedShortcutRestoresFromAnywhereButNotByItsRecording) {
    beginWithLayout();
    ASSERT_TRUE(openSettings(shortcuts) && press(tabKey) && press(downKey) && press(spaceKey) && press('q') &&
                pressShortcut());
    const QJsonObject recorded{{"keyCode", keyR}, {"modifiers", control}};
    ASSERT_TRUE(waitUntil([&] { return shortcutOfLayout() == recorded; }));
    // Nor does a second press right after it; it is waited for longer than it is kept from acting.
    ASSERT_TRUE(pressShortcut());
    EXPECT_FALSE(waitUntil([&] { return seen(window()) != astray; }, std::chrono::milliseconds(1500)));

    EXPECT_TRUE(shortcutRestores());

    // Clearing ends it; the button stands in the field that recorded it.
    ASSERT_TRUE(openSettings(shortcuts) && press(tabKey) && press(downKey) && press(rightKey) &&
                press(spaceKey));
    EXPECT_TRUE(becomes("layoutShortcuts", QJsonObject()));
}

// Shortcuts rest while one is recorded. However the recording ends, they work again, and nothing is recorded.
TEST_F(SettingsTest, LeavingInTheMiddleOfARecordingEndsIt) {
    beginWithLayout();
    const auto layout = program().payload("layouts.json")[0]["id"].toString();
    ASSERT_TRUE(openSettings(shortcuts) && press(tabKey) && press(downKey) && press(spaceKey) &&
                pressShortcut());
    ASSERT_TRUE(waitUntil([&] { return !shortcutOfLayout().isEmpty(); }));

    const auto clickFirstPane = [&] {
        const Rect frame = windows().visibleFrame(*settingsWindow()).value_or(Rect{});
        const auto titleBar = xDesktop().windows().frameExtents(*settingsWindow())[2];
        Mouse(desktop().x()).click({frame.x + 40, frame.y + titleBar + 18, 60, 18});
        return true;
    };
    const std::pair<const char*, std::function<bool()>> ways[] = {
        {"Escape", [&] { return press(Keyboard::escapeKey); }},
        {"another control", [&] { return press(tabKey); }},
        {"another pane", clickFirstPane},
        {"the window filled anew", [&] { return tray().choose({"Settings…"}); }},
        {"the window closed", [&] { return closeSettings(); }},
    };
    for (const auto& [way, leave] : ways) {
        ASSERT_TRUE(openSettings(shortcuts) && press(tabKey) && press(spaceKey)) << way;
        ASSERT_TRUE(leave()) << way;
        EXPECT_TRUE(shortcutRestores()) << way;
        EXPECT_TRUE(setting("autoDetectShortcut").isUndefined()) << way;
    }
    ASSERT_TRUE(openSettings(shortcuts) && press(tabKey) && press(spaceKey));
    ASSERT_TRUE(tray().choose({"Quit Tavrin"}));
    EXPECT_EQ(program().process().waitForExit(), 0);
    EXPECT_EQ(setting("layoutShortcuts").toObject().keys(), QStringList(layout));
}

// Only with the keyboard, from the list of panes on.
TEST_F(SettingsTest, EveryChoiceIsWrittenAtOnce) {
    beginWithLayout();
    ASSERT_TRUE(openSettings(automation));
    const std::pair<const char*, bool> switches[] = {{"autoRestoreOnConnect", false},
                                                     {"autoRestoreOnDisconnect", false},
                                                     {"autoRestoreOnWake", true},
                                                     {"autoRestoreOnUnlockLogin", true}};
    for (const auto& [key, wanted] : switches) {
        ASSERT_TRUE(press(tabKey) && press(spaceKey));
        EXPECT_TRUE(becomes(key, wanted)) << key;
    }
    const auto layoutID = program().payload("layouts.json")[0]["id"];
    ASSERT_TRUE(press(tabKey) && press(downKey));
    EXPECT_TRUE(
        waitUntil([&] { return program().payload("profiles.json")[0]["defaultLayoutID"] == layoutID; }));
    ASSERT_TRUE(press(tabKey) && press(spaceKey));
    EXPECT_TRUE(becomes("launchAtLogin", true));
    EXPECT_TRUE(QFile::exists(desktop().home() + "/.config/autostart/org.tavrin.Tavrin.desktop"));

    ASSERT_TRUE(openSettings(apps) && press(tabKey) && desktop().keyboard().type("org.example.editor") &&
                press(Keyboard::returnKey));
    EXPECT_TRUE(becomes("excludedBundleIDs", QJsonArray{"org.example.editor"}));
    ASSERT_TRUE(press(tabKey) && press(spaceKey)); // the application with an open window
    ASSERT_TRUE(waitUntil([&] { return setting("excludedBundleIDs").toArray().size() == 2; }));
    ASSERT_TRUE(openSettings(apps) && press(tabKey) && press(spaceKey)); // the first one's "Remove"
    EXPECT_TRUE(waitUntil([&] { return setting("excludedBundleIDs").toArray().size() == 1; }));
    EXPECT_NE(setting("excludedBundleIDs")[0], "org.example.editor");

    ASSERT_TRUE(openSettings(advanced) && press(tabKey, 2) && press(spaceKey));
    EXPECT_TRUE(becomes("clusterExtraAppWindows", false));

    ASSERT_TRUE(openSettings(layouts) && press(tabKey, 2) && press(f2Key) &&
                desktop().keyboard().type("Talk") && press(Keyboard::returnKey));
    EXPECT_TRUE(waitUntil([&] { return program().payload("layouts.json")[0]["name"] == "Talk"; }));
    ASSERT_TRUE(press(deleteKey) && press(Keyboard::escapeKey));
    ASSERT_TRUE(press(deleteKey) && press(Keyboard::returnKey)); // "Cancel" has the focus
    ASSERT_TRUE(press(f2Key) && desktop().keyboard().type("Chat") && press(Keyboard::returnKey));
    ASSERT_TRUE(waitUntil([&] { return program().payload("layouts.json")[0]["name"] == "Chat"; }));
    ASSERT_TRUE(press(deleteKey) && press(tabKey) && press(Keyboard::returnKey));
    EXPECT_TRUE(waitUntil([&] { return program().payload("layouts.json").toArray().isEmpty(); }));
    ASSERT_TRUE(desktop().keyboard().pressWith(Keyboard::controlKey, 'z'));
    EXPECT_TRUE(waitUntil([&] { return program().payload("layouts.json")[0]["name"] == "Chat"; }))
        << "taken back";
}

} // namespace

} // namespace tavrin::desktop
