#include "doubles/fake_desktop.h"
#include "doubles/fake_file_system.h"
#include "doubles/fake_time.h"
#include "session/accessibility_permission_service.h"
#include "session/app_data_reset_coordinator.h"
#include "session/launch_at_login_service.h"
#include "ui/permission_status_view_model.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

using enum AccessibilityPermissionState;

TEST(AccessibilityPermission, ProbesWhenTheTrustQuerySaysNo) {
    testing::FakeElements elements;
    EXPECT_FALSE(canReadFocusedWindow(elements)) << "no focused application";
    elements.system->attributes[AXAttribute::focusedApplication] = std::string("not an element");
    EXPECT_FALSE(canReadFocusedWindow(elements));
    elements.system->attributes[AXAttribute::focusedApplication] = AXElement{};
    EXPECT_FALSE(canReadFocusedWindow(elements));
    auto& application = elements.application(1);
    elements.system->attributes[AXAttribute::focusedApplication] = elements.applicationElement(1, {});
    EXPECT_FALSE(canReadFocusedWindow(elements)) << "neither a focused window nor a list";
    application.attributes[AXAttribute::windows] = std::vector<AXElement>{};
    EXPECT_FALSE(canReadFocusedWindow(elements));
    elements.addWindow(1, {}, "w");
    EXPECT_TRUE(canReadFocusedWindow(elements));
    application.attributes.erase(AXAttribute::windows);
    application.attributes[AXAttribute::focusedWindow] = elements.addWindow(2, {}, "w");
    EXPECT_TRUE(canReadFocusedWindow(elements));
}

TEST(AccessibilityPermission, IsGrantedByAnyPositiveAnswer) {
    using Prompt = AccessibilityPermissionService::Prompt;
    for (const auto& [trusted, probe, expected] :
         {std::tuple{true, false, granted}, {false, true, granted}, {false, false, denied}}) {
        std::vector<Prompt> prompts;
        AccessibilityPermissionService service({.trustedCheck = [&] { return trusted; },
                                                .promptCheck =
                                                    [&](Prompt prompt) {
                                                        prompts.push_back(prompt);
                                                        return trusted;
                                                    },
                                                .probeCheck = [&] { return probe; }});
        EXPECT_EQ(service.currentState(), expected);
        EXPECT_TRUE(prompts.empty());
        EXPECT_EQ(service.requestAccess(), expected);
        EXPECT_EQ(service.recheckAccess(), expected);
        EXPECT_EQ(prompts, (std::vector{Prompt::show, Prompt::suppress}));
    }
}

TEST(PermissionStatus, PollsUntilGrantedAndNeverTakesAway) {
    testing::FixedPermission service;
    testing::FakeTime time;
    PermissionStatusViewModel model{service, time};
    EXPECT_EQ(model.state.value(), unknown);
    model.requestAccess();
    EXPECT_EQ(time.pendingTasks(), 0u) << "granted at once";
    service.state = denied;
    {
        PermissionStatusViewModel shortLived{service, time};
        shortLived.requestAccess();
        EXPECT_EQ(time.pendingTasks(), 1u);
    }
    EXPECT_EQ(time.pendingTasks(), 0u) << "polling ends with the model";

    model.recheck();
    EXPECT_EQ(time.pendingTasks(), 0u);
    model.recheckAndPoll();
    time.pass(11.9);
    model.recheckAndPoll(); // must not begin the interval anew
    EXPECT_EQ(time.pendingTasks(), 1u);
    service.state = granted;
    EXPECT_EQ(model.state.value(), denied) << "until the next tick";
    time.pass(0.2);
    EXPECT_EQ(model.state.value(), granted);
    EXPECT_EQ(time.pendingTasks(), 0u);
    service.state = denied;
    model.refresh();
    EXPECT_EQ(model.state.value(), denied);
}

TEST(AppDataReset, MovesTheFilesAwayOncePerVersion) {
    testing::FakeFileSystem files;
    testing::FakeDefaults defaults;
    const AppSupportPaths paths{files, "/data"};
    files.files = {{"/data/profiles.json", "p"},
                   {"/data/layouts.json", "l"},
                   {"/data/settings.json", "s"},
                   {"/data/settings.json.before-reset", "older"},
                   {"/data/notes.txt", "mine"}};
    AppDataResetCoordinator reset{paths, defaults};
    EXPECT_EQ(reset.applyIfNeeded(), AppDataResetCoordinator::Outcome::didReset);
    EXPECT_EQ(files.files, (std::map<std::string, std::string>{{"/data/profiles.json.before-reset", "p"},
                                                               {"/data/layouts.json.before-reset", "l"},
                                                               {"/data/settings.json.before-reset", "s"},
                                                               {"/data/notes.txt", "mine"}}));
    EXPECT_TRUE(reset.consumeResetNotice());
    const int writes = defaults.writes;
    EXPECT_FALSE(reset.consumeResetNotice());
    EXPECT_EQ(defaults.writes, writes);

    files.files["/data/layouts.json"] = "l";
    const auto& version = "tavrin.beta.appDataResetVersion";
    for (const auto& [applied, usable] : {std::pair{1, true}, {5, true}, {0, false}}) {
        defaults.integers[version] = applied;
        defaults.usable = usable; // what cannot be remembered would be repeated
        EXPECT_EQ(reset.applyIfNeeded(), AppDataResetCoordinator::Outcome::alreadyApplied) << applied;
        EXPECT_TRUE(files.files.contains("/data/layouts.json")) << applied;
    }
    defaults.usable = true;
    defaults.integers.clear(); // the notice is left of a damaged file
    EXPECT_EQ(reset.applyIfNeeded(), AppDataResetCoordinator::Outcome::alreadyApplied);
    defaults.booleans.clear();
    files.failing = {"rename"};
    EXPECT_EQ((AppDataResetCoordinator{paths, defaults, 2}.applyIfNeeded()),
              AppDataResetCoordinator::Outcome::didReset);
    EXPECT_EQ(defaults.integers[version], 2);
}

TEST(LaunchAtLogin, CallsThePlatformOnlyWhenNeeded) {
    testing::FakeLoginItem item;
    item.fails = true;
    LaunchAtLoginService service{item};
    EXPECT_TRUE(service.disable());
    EXPECT_EQ(item.changes, 0);
    EXPECT_EQ(service.enable().error(), (PlatformError{5, "no room"}));
    item.fails = false;
    EXPECT_TRUE(service.enable() && service.isEnabled());
    EXPECT_TRUE(service.enable());
    EXPECT_EQ(item.changes, 2);
    item.current = LoginItemStatus::requiresApproval;
    EXPECT_FALSE(service.isEnabled());
    EXPECT_TRUE(service.disable());
    EXPECT_EQ(item.current, LoginItemStatus::notRegistered);
}

} // namespace
} // namespace tavrin
