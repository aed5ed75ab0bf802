#include "desktop_test.h"
#include "support/desktop/mouse.h"
#include "support/desktop/screenshot.h"
#include "ui/qt/controls/style.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QImage>
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
        dataChanges_.addPath(dataFolder());
    }

    WindowHandle window() const { return window_; }
    QString dataFolder() { return desktop().home() + "/.local/share/Tavrin"; }
    std::optional<WindowHandle> settingsWindow() { return windows().find(settingsTitle); }

    bool closeSettings() {
        if (const auto shown = settingsWindow())
            windows().close(*shown);
        return waitUntil([&] { return !settingsWindow(); });
    }
    /// Opens the window anew on that pane, with the focus in the list of panes.
    bool openSettings(Pane pane) {
        return closeSettings() && tray().choose({"Settings…"}) && windows().waitForTitle(settingsTitle) &&
               waitUntil([&] { return haveKeyboard(); }) && press(downKey, pane);
    }
    /// Another window of the program may have it.
    bool haveKeyboard() {
        auto* x = desktop().x().raw();
        const Reply<xcb_get_input_focus_reply_t> focus{
            xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr)};
        return focus && settingsWindow() == WindowHandle(focus->focus);
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

    QImage picture() {
        waitUntilDrawn(desktop().x());
        const QString file = desktop().logs() + "/screen.png";
        return takeScreenshot(desktop().x(), file) ? QImage(file) : QImage();
    }
    /// The first pane in the list.
    Rect firstPane() {
        const Rect frame = windows().visibleFrame(*settingsWindow()).value_or(Rect{});
        const auto titleBar = xDesktop().windows().frameExtents(*settingsWindow())[2];
        return {frame.x + 40, frame.y + titleBar + 18, 60, 18};
    }
    /// The button "Restore" of the only card: the first place of a button's colour that is wide enough.
    std::optional<Rect> restoreButton() {
        constexpr QRgb ground = 0xffe3e3e3;
        constexpr int width = 60;
        const QImage screen = picture();
        const Rect frame = windows().visibleFrame(*settingsWindow()).value_or(Rect{});
        for (int y = int(frame.y); y < frame.maxY(); ++y)
            for (int x = int(frame.x), run = 0; x < frame.maxX(); ++x)
                if (run = screen.pixel(x, y) == ground ? run + 1 : 0; run == width)
                    return Rect{double(x - width), double(y), width, 16};
        return {};
    }

    QJsonValue setting(const QString& key) { return program().payload("settings.json")[key]; }
    QJsonObject shortcutOfLayout() {
        return setting("layoutShortcuts")[program().payload("layouts.json")[0]["id"].toString()].toObject();
    }
    bool becomes(const QString& key, const QJsonValue& wanted) {
        return waitUntil([&] { return setting(key) == wanted; });
    }

    QFileSystemWatcher dataChanges_; ///< wakes whoever waits for them

private:
    WindowHandle window_;
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

    const std::pair<const char*, std::function<bool()>> ways[] = {
        {"Escape", [&] { return press(Keyboard::escapeKey); }},
        {"another control", [&] { return press(tabKey); }},
        {"another pane", [&] { return Mouse(desktop().x()).click(firstPane()), true; }},
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

// The press ends the renaming, and the release still meets its button.
TEST_F(SettingsTest, AClickThatEndsARenamingIsNotLost) {
    beginWithLayout();
    ASSERT_TRUE(openSettings(layouts) && press(tabKey, 2) && press(f2Key) &&
                desktop().keyboard().type("Talk"));
    const auto button = restoreButton();
    ASSERT_TRUE(button);
    Mouse mouse(desktop().x());
    mouse.press(*button);
    EXPECT_TRUE(waitUntil([&] { return program().payload("layouts.json")[0]["name"] == "Talk"; }));
    mouse.release();
    EXPECT_TRUE(waitUntil([&] { return seen(window()) == saved; }));
}

// By keyboard alone, from what the window says to what mends it.
TEST_F(SettingsTest, WhatIsMissingComesFirstWithWhatMendsIt) {
    begin({.hasWindowManager = false});
    ASSERT_TRUE(program().start());
    QFile file(dataFolder() + "/layouts.json");
    ASSERT_TRUE(QDir().mkpath(dataFolder()) && file.open(QIODevice::WriteOnly) && file.write("{") == 1);
    file.close();
    ASSERT_TRUE(tray().choose({"Settings…"}) && waitUntil([&] { return program().formArea().has_value(); }));
    waitUntilDrawn(desktop().x());
    ASSERT_TRUE(press(tabKey) && press(Keyboard::returnKey)); // "How to fix it"
    const auto isOwn = [&](auto shown) {
        return xDesktop().windows().processOf(shown) == program().process().pid();
    };
    EXPECT_TRUE(waitUntil([&] { return std::ranges::count_if(xDesktop().windows().shown(), isOwn) == 2; }));

    ASSERT_TRUE(xDesktop().startWindowManager());
    windows().close(windows().waitForTitle("Tavrin: the permission to move windows").value());
    dataChanges_.addPath(dataFolder());
    ASSERT_TRUE(openSettings(layouts) && press(tabKey) && press(Keyboard::returnKey)); // "Open Advanced"
    waitUntilDrawn(desktop().x());
    const auto isSetAside = [&] { return !QFile::exists(file.fileName()); };
    for (int attempt = 0; attempt < 3 && !isSetAside(); ++attempt) {
        ASSERT_TRUE(press(tabKey) && press(Keyboard::returnKey)); // "Set Aside and Start Fresh"
        waitUntil(isSetAside, attemptLimit);
    }
    const QDir data(dataFolder());
    const auto kept = data.entryList({"layouts.json.unreadable-*"});
    ASSERT_EQ(kept.size(), 1);
    QFile aside(data.filePath(kept.front()));
    EXPECT_TRUE(aside.open(QIODevice::ReadOnly) && aside.readAll() == "{");
}

// The desktop becomes dark while the window is open; its own accent would have a contrast of 2.4 to the text.
TEST_F(SettingsTest, FollowsTheDesktopToColoursThatCanBeRead) {
    begin();
    QDBusConnection bus = desktop().sessionBus().connection();
    ASSERT_TRUE(bus.registerService("org.freedesktop.portal.Desktop"));
    ASSERT_TRUE(program().start() && openSettings(layouts));
    auto change = QDBusMessage::createSignal("/org/freedesktop/portal/desktop",
                                             "org.freedesktop.portal.Settings", "SettingChanged");
    change.setArguments(
        {"org.freedesktop.appearance", "color-scheme", QVariant::fromValue(QDBusVariant(1U))});
    bus.send(change);
    const Rect row = firstPane();
    const QImage screen = picture();
    EXPECT_LT(qGray(screen.pixel(int(row.x), int(row.maxY()) + 300)), 60) << "dark";
    const QImage pane = screen.copy(int(row.x), int(row.y), int(row.width), int(row.height));
    const QColor ground = pane.pixelColor(0, 0);
    double best = 0;
    for (int y = 0; y < pane.height(); ++y)
        for (int x = 0; x < pane.width(); ++x)
            best = std::max(best, contrast(pane.pixelColor(x, y), ground));
    EXPECT_GT(ground.blue(), ground.red() + 50) << "the accent";
    EXPECT_GE(best, textContrast);
}

} // namespace

} // namespace tavrin::desktop
