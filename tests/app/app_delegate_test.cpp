#include "app/app_delegate.h"
#include "doubles/builders.h"
#include "doubles/fake_desktop.h"
#include "doubles/fake_file_system.h"
#include "doubles/fake_interface.h"
#include "doubles/fake_time.h"
#include "ports/session.h"
#include "ports/window_elements.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

struct FakeTrust : AccessibilityTrust {
    bool trusted = true;
    bool isProcessTrusted() override { return trusted; }
    bool isProcessTrusted(Prompt) override { return trusted; }
};

struct NoInstances : RunningInstances {
    std::vector<InstanceProbe> runningInstances() override { return {}; }
    void activate(ProcessID) override {}
};

constexpr ProcessID editor = 7;
const Rect home{100, 100, 800, 600}, away{900, 300, 800, 600};

class AppDelegateTest : public ::testing::Test {
protected:
    testing::FixedScreens screens;
    testing::FixedRawWindows windowList;
    testing::FixedApplications applications;
    testing::FakeElements elements;
    FakeTrust trust;
    testing::FakeKeys keys;
    testing::FakeEvents events;
    testing::FakeLoginItem loginItem;
    NoInstances instances;
    testing::FakeDefaults defaults;
    testing::FakeFileSystem files;
    testing::FakeTime time;
    testing::FakeStatusItem item;
    testing::FakeHost host;
    testing::FakeCatalog catalog;
    testing::FixedDesktopInformation information;
    testing::FakeInterface interface{host};
    Platform platform{screens,   windowList, applications, elements, trust,   keys,       events,
                      loginItem, instances,  defaults,     files,    time,    time,       item,
                      host,      host,       "/data",      4711,     catalog, information};
    SettingsStore settings{AppSupportPaths{files, "/data/Tavrin"}, time};
    ProfileStore store{AppSupportPaths{files, "/data/Tavrin"}, time};
    std::shared_ptr<testing::FakeElements::Element> window;

    void SetUp() override {
        const Rect frame{0, 0, 1920, 1080};
        screens.list = {{frame, frame, 1, {{1, 2, 3, false, 1920, 1080}}}};
        defaults.integers["tavrin.beta.appDataResetVersion"] = 1;
        applications.applications = {{editor, "editor.desktop", "Editor", false}};
        window = elements.addWindow(editor, home, "notes");
        listWindowAt(home);
    }

    void listWindowAt(const Rect& frame) {
        windowList.entries = {{.number = 1,
                               .ownerName = "Editor",
                               .bounds = RawWindowBounds{frame.x, frame.y, frame.width, frame.height},
                               .name = "notes",
                               .isOnScreen = true,
                               .ownerPID = editor}};
        window->attributes[AXAttribute::position] = Point{frame.x, frame.y};
        window->attributes[AXAttribute::size] = Size{frame.width, frame.height};
    }

    SavedLayout saveLayout() {
        item.chosen(MenuAction::saveCurrentLayout, {});
        interface.popover->view->setLayoutName("Work");
        interface.popover->view->save();
        return store.loadLayouts()->back();
    }

    Rect windowFrame() {
        const auto position = readAttribute<Point>(elements, window, AXAttribute::position).value();
        const auto size = readAttribute<Size>(elements, window, AXAttribute::size).value();
        return {position.x, position.y, size.width, size.height};
    }
};

TEST_F(AppDelegateTest, ResetsOldDataBeforeAnythingReadsIt) {
    defaults.integers.clear();
    ASSERT_TRUE(settings.save({.autoDetectShortcut = KeyCombo{15, ModifierSet::control}}));
    AppDelegate delegate{platform, interface};
    EXPECT_EQ(interface.collaborators->shortcutManager.autoDetectShortcut.value(), std::nullopt);
    EXPECT_FALSE(files.files.contains("/data/Tavrin/settings.json"));
    EXPECT_TRUE(defaults.booleans["tavrin.beta.resetNoticePending"]);
    EXPECT_FALSE(item.isShown) << "nothing is visible before launch has finished";
}

TEST_F(AppDelegateTest, AgreesWithTheSystemOnLaunchAtLogin) {
    struct Case {
        bool saved;
        LoginItemStatus status;
        bool fails;
        bool savedAfter, enabledAfter;
    };
    using enum LoginItemStatus;
    for (const Case& c :
         {Case{false, notRegistered, false, false, false},
          Case{false, LoginItemStatus::enabled, false, true, true},
          Case{true, notRegistered, false, true, true}, Case{true, notRegistered, true, false, false},
          Case{true, LoginItemStatus::enabled, true, true, true},
          // Switched off in the desktop's own settings.
          Case{true, requiresApproval, false, false, false},
          Case{false, requiresApproval, false, false, false}}) {
        ASSERT_TRUE(settings.save({.launchAtLogin = c.saved}));
        loginItem.current = c.status;
        loginItem.fails = c.fails;
        files.log.clear();
        AppDelegate delegate{platform, interface};
        delegate.applicationDidFinishLaunching();
        EXPECT_EQ(settings.load()->launchAtLogin, c.savedAfter) << c.saved << int(c.status) << c.fails;
        EXPECT_EQ(loginItem.current == LoginItemStatus::enabled, c.enabledAfter);
        EXPECT_EQ(files.log.empty(), c.saved == c.savedAfter) << "written only when it changed";
    }
}

TEST_F(AppDelegateTest, ShowsOnceThatItRunsWhereNoIconCan) {
    for (const bool isFirst : {true, false}) {
        AppDelegate delegate{platform, interface};
        delegate.applicationDidFinishLaunching();
        ASSERT_TRUE(item.noStatusArea);
        host.log.clear();
        item.noStatusArea();
        EXPECT_EQ(host.log.empty(), !isFirst);
    }
}

TEST_F(AppDelegateTest, ShowsThatNothingWasStored) {
    AppDelegate delegate{platform, interface};
    delegate.applicationDidFinishLaunching();
    item.chosen(MenuAction::saveCurrentLayout, {});
    const auto form = interface.popover->view;
    ASSERT_TRUE(form);
    files.files["/data/Tavrin/layouts.json"] = "broken";
    host.log.clear();
    form->setLayoutName("Work");
    form->save();
    EXPECT_EQ(host.log, "regular window0 activate ") << "the notice is in the settings window";

    host.open = true;
    host.log.clear();
    item.chosen(MenuAction::saveCurrentLayout, {});
    EXPECT_FALSE(interface.popover->view) << "no name is asked for in vain";
    EXPECT_EQ(host.log, "activate ") << "the pane that is open stays";
}

TEST_F(AppDelegateTest, WorksWhileThePermissionLasts) {
    trust.trusted = false;
    ASSERT_TRUE(settings.save({.autoDetectShortcut = KeyCombo{15, ModifierSet::control}}));
    AppDelegate delegate{platform, interface};
    delegate.applicationDidFinishLaunching();
    const auto monitorsAndObservers = [&] {
        return std::tuple(!keys.watched.empty(), static_cast<bool>(keys.local),
                          events.observerCount(SystemEvent::didWake));
    };
    const std::tuple idle(false, false, 1u), working(true, true, 2u);
    EXPECT_EQ(monitorsAndObservers(), idle);
    trust.trusted = true;
    events.emit(SystemEvent::trustMayHaveChanged);
    EXPECT_EQ(monitorsAndObservers(), working);
    trust.trusted = false;
    events.emit(SystemEvent::didBecomeActive);
    EXPECT_EQ(monitorsAndObservers(), idle);
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(monitorsAndObservers(), idle) << "a second launch observes nothing twice";
}

TEST_F(AppDelegateTest, RestoresByShortcut) {
    AppDelegate delegate{platform, interface};
    delegate.applicationDidFinishLaunching();
    const auto work = saveLayout();
    ASSERT_TRUE(store.setDefaultLayout(work.profileID, work.id));
    ShortcutManager& shortcuts = interface.collaborators->shortcutManager;
    const auto control = ModifierSet::control;
    shortcuts.setAutoDetectShortcut(KeyCombo{15, control});
    shortcuts.setLayoutShortcut(KeyCombo{16, control}, work.id);
    shortcuts.setLayoutShortcut(KeyCombo{17, control}, Uuid::random());
    time.pass(1);
    const auto lastTrigger = [&] {
        const auto& attempt = interface.collaborators->restoreDebugStore.lastAttempt.value();
        return attempt ? std::string(displayName(attempt->trigger)) : "none";
    };

    keys.press(KeyEvent{17, control.rawValue});
    EXPECT_EQ(lastTrigger(), "none") << "the layout is gone";
    for (const std::uint16_t key : {15, 16}) {
        listWindowAt(away);
        item.image.clear();
        keys.press(KeyEvent{key, control.rawValue});
        EXPECT_EQ(windowFrame(), home);
        EXPECT_EQ(item.image, "checkmark.circle.fill");
        EXPECT_EQ(lastTrigger(), "Shortcut");
    }
    ASSERT_TRUE(store.setDefaultLayout(work.profileID, std::nullopt));
    listWindowAt(away);
    keys.press(KeyEvent{15, control.rawValue});
    EXPECT_EQ(windowFrame(), away) << "no default layout, nothing to restore";
}

} // namespace
} // namespace tavrin
