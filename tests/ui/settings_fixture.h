#pragma once

#include "doubles/builders.h"
#include "doubles/fake_desktop.h"
#include "doubles/fake_file_system.h"
#include "doubles/fake_interface.h"
#include "doubles/fake_time.h"
#include "ui/user_interface.h"

#include <gtest/gtest.h>

namespace tavrin::testing {

/// The whole program behind the panes, on the desk with two monitors. Two setups are saved: "Desk", which is
/// connected, with the layouts "Work" and "Play", and "Home" with "Evening".
class SettingsFixture {
public:
    FakeFileSystem files;
    FakeTime time;
    FixedDisplays displays;
    FixedWindows windows;
    FixedPermission permission;
    FakeKeys keys;
    FakeCatalog catalog;
    FixedDesktopInformation information;
    FakeHost host;
    FakeLoginItem loginItem;
    SettingsStore settings{AppSupportPaths{files, "/data"}, time};
    ProfileStore store{AppSupportPaths{files, "/data"}, time};
    PermissionStatusViewModel permissionModel{permission, time};
    ProfileListViewModel list{store};
    CurrentProfileViewModel current{displays, store};
    ShortcutManager shortcuts{settings, keys, time};
    RestoreDebugStore attempts;
    LaunchAtLoginService launchAtLogin{loginItem};
    CaptureService capture{{windows, nullptr, store, settings, displays, time}, 4711};
    ScriptedRestores restores;
    LayoutRestorer restorer{{store, restores, attempts, time, [] {}}};
    Rect savedBeside;
    LayoutChanges changes{{capture, store, shortcuts, current, list, time}};
    SettingsCollaborators collaborators{.permissionStatusViewModel = permissionModel,
                                        .profileListViewModel = list,
                                        .currentProfileViewModel = current,
                                        .shortcutManager = shortcuts,
                                        .settingsStore = settings,
                                        .captureService = capture,
                                        .profileStore = store,
                                        .layoutChanges = changes,
                                        .restoreDebugStore = attempts,
                                        .layoutRestorer = restorer,
                                        .launchAtLoginService = launchAtLogin,
                                        .windowProvider = windows,
                                        .displaySnapshotProvider = displays,
                                        .keyMonitors = keys,
                                        .applicationCatalog = catalog,
                                        .desktopInformation = information,
                                        .host = host,
                                        .linkOpener = host,
                                        .scheduler = time,
                                        .clock = time,
                                        .dataDirectory = "/data",
                                        .processIdentifier = 4711,
                                        .saveCurrentLayout = [this](const Rect& beside) {
                                            host.log += "save ";
                                            savedBeside = beside;
                                        }};
    Uuid deskID, homeID, workID, playID, eveningID;

    SettingsFixture() {
        displays.snapshot = desk();
        homeID = store.createProfile("Home", fingerprint(leftAlone()))->id;
        deskID = store.createProfile("Desk", fingerprint(desk()))->id;
        workID =
            save("Work", deskID,
                 {entry("Editor", "notes", {0, 0, 800, 600}), entry("Editor", "more", {900, 0, 800, 600})});
        playID = save("Play", deskID, {entry("Game", "", {1920, 0, 1920, 1080})});
        eveningID = save("Evening", homeID, {entry("Browser", "news", {0, 0, 1920, 1050})});
        current.refresh();
        list.reload();
    }

    static DisplayFingerprint fingerprint(const DisplaySnapshotCollection& collection) {
        return MonitorProfileMatcher{}.makeFingerprint(collection);
    }

    Uuid save(std::string name, const Uuid& profileID, std::vector<SavedLayoutEntry> entries) {
        auto saved = layout(std::move(name), std::move(entries));
        saved.profileID = profileID;
        saved.createdAt = saved.updatedAt = time.now();
        EXPECT_TRUE(store.saveLayout(saved));
        return saved.id;
    }

    MonitorProfile profileNamed(const std::string& name) {
        const auto profiles = store.loadProfiles().value();
        for (const MonitorProfile& saved : profiles)
            if (saved.name == name)
                return saved;
        return {};
    }
    std::vector<std::string> layoutNames() {
        std::vector<std::string> names;
        const auto layouts = store.loadLayouts().value();
        for (const SavedLayout& saved : layouts)
            names.push_back(saved.name);
        return names;
    }

    /// A key press in one of the program's own windows; true when it was used up.
    bool pressHere(std::uint16_t keyCode, ModifierSet modifiers) {
        return keys.local(KeyEvent{keyCode, modifiers.rawValue});
    }
};

} // namespace tavrin::testing
