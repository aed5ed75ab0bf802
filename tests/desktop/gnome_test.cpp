#include "desktop_test.h"
#include "support/desktop/gnome_desktop.h"
#include "support/desktop/login_manager.h"

#include <QJsonObject>
#include <gmock/gmock.h>

namespace tavrin::desktop {

namespace {

using ::testing::StartsWith;

/// What is GNOME's own: an extension that comes and goes.
class GnomeTest : public ProgramTest {
protected:
    GnomeDesktop& gnome() { return dynamic_cast<GnomeDesktop&>(desktop()); }
    bool isGranted() { return program().menu().starts_with("Current Display Setup"); }
};

TEST_F(GnomeTest, ThePermissionComesAndGoesWithTheExtension) {
    beginWith({{0, 0, 1280, 800}});
    ASSERT_TRUE(isGranted());
    ASSERT_TRUE(gnome().disableExtension());
    EXPECT_TRUE(waitUntil([&] { return !isGranted(); }));
    EXPECT_THAT(program().menu(), StartsWith("Accessibility access is required"));
    // The first button of the banner enables it.
    ASSERT_TRUE(tray().choose({"Settings…"}) && windows().waitForTitle("Tavrin Settings"));
    ASSERT_TRUE(waitUntil([&] { return windows().processWithKeyboard() == program().process().pid(); }));
    constexpr std::uint32_t tabKey = 0xff09;
    EXPECT_TRUE(desktop().keyboard().press(tabKey) && desktop().keyboard().press(' '));
    EXPECT_TRUE(waitUntil([&] { return isGranted(); }));
}

TEST_F(GnomeTest, ARestoreOnUnlockWaitsForTheExtension) {
    begin({.displays = {{0, 0, 1280, 800}}});
    LoginManager logind(desktop().systemBus().connection());
    ASSERT_TRUE(logind.appear() && program().start());
    const Rect saved{40, 60, 500, 400};
    const auto window = open(client(), {.title = "Notes"}, saved);
    ASSERT_TRUE(program().saveLayout("Desk") && program().makeDefault("Desk"));
    ASSERT_TRUE(program().setPayload("settings.json", QJsonObject{{"autoRestoreOnConnect", false},
                                                                  {"autoRestoreOnDisconnect", false},
                                                                  {"autoRestoreOnWake", false},
                                                                  {"autoRestoreOnUnlockLogin", true}}));
    ASSERT_TRUE(windows().place(window, {600, 300, 300, 240}));
    logind.lock();
    gnome().setLockScreen(true);
    ASSERT_TRUE(waitUntil([&] { return !isGranted(); }));
    logind.unlock();
    ASSERT_FALSE(isGranted());
    gnome().setLockScreen(false);
    EXPECT_TRUE(waitUntil([&] { return seen(window) == saved; }, std::chrono::seconds(20)));
}

} // namespace

} // namespace tavrin::desktop
