#include "app/app_delegate.h"

#include "ports/session.h"

#include <algorithm>

namespace tavrin {
namespace {

/// The reset comes before any store reads a file.
AppDataResetCoordinator resetIfNeeded(AppDataResetCoordinator coordinator) {
    coordinator.applyIfNeeded();
    return coordinator;
}

} // namespace

AppDelegate::AppDelegate(const Platform& platform, UserInterfaceFactory& userInterface)
    : platform_(platform), resetCoordinator_(resetIfNeeded({paths(), platform_.userDefaults})),
      displaySnapshotProvider_(platform_.screenList),
      windowListProvider_(platform_.windowList, platform_.runningApplications),
      axWindowSnapshotProvider_(platform_.runningApplications, platform_.windowElements),
      windowMover_(platform_.windowElements), runningApplicationResolver_(platform_.runningApplications),
      permissionService_(platform_.accessibilityTrust, platform_.windowElements),
      profileStore_(paths(), platform_.clock), settingsStore_(paths(), platform_.clock),
      permissionStatusViewModel_(permissionService_, platform_.scheduler),
      currentProfileViewModel_(displaySnapshotProvider_, profileStore_), profileListViewModel_(profileStore_),
      shortcutManager_(settingsStore_, platform_.keyMonitors, platform_.clock),
      captureService_({.windowProvider = windowListProvider_,
                       .axWindowProvider = &axWindowSnapshotProvider_,
                       .profileStore = profileStore_,
                       .settingsStore = settingsStore_,
                       .displaySnapshotProvider = displaySnapshotProvider_,
                       .clock = platform_.clock},
                      platform_.processIdentifier),
      layoutChanges_({.captureService = captureService_,
                      .profileStore = profileStore_,
                      .shortcutManager = shortcutManager_,
                      .currentProfileViewModel = currentProfileViewModel_,
                      .profileListViewModel = profileListViewModel_,
                      .scheduler = platform_.scheduler}),
      restoreService_({.windowProvider = windowListProvider_,
                       .windowMover = windowMover_,
                       .displaySnapshotProvider = displaySnapshotProvider_,
                       .settingsProvider = &settingsStore_,
                       .pidResolver = runningApplicationResolver_,
                       .permissionService = permissionService_,
                       .grantPermission = platform_.desktopInformation.texts().grantPermission},
                      platform_.applicationHost.bundlePath()),
      layoutRestorer_({.profileProvider = profileStore_,
                       .restoreService = restoreService_,
                       .restoreDebugStore = restoreDebugStore_,
                       .clock = platform_.clock,
                       .refreshPermission = [this] { permissionStatusViewModel_.refresh(); }}),
      autoRestoreCoordinator_({.settingsProvider = settingsStore_,
                               .profileProvider = profileStore_,
                               .restoreService = restoreService_,
                               .displaySnapshotProvider = displaySnapshotProvider_,
                               .restoreDebugStore = &restoreDebugStore_,
                               .systemEvents = platform_.systemEvents,
                               .scheduler = platform_.scheduler,
                               .clock = platform_.clock}),
      launchAtLoginService_(platform_.loginItem), popover_(userInterface.makePopover()),
      settingsWindow_(userInterface.makeSettingsWindow({
          .permissionStatusViewModel = permissionStatusViewModel_,
          .profileListViewModel = profileListViewModel_,
          .currentProfileViewModel = currentProfileViewModel_,
          .shortcutManager = shortcutManager_,
          .settingsStore = settingsStore_,
          .captureService = captureService_,
          .profileStore = profileStore_,
          .layoutChanges = layoutChanges_,
          .restoreDebugStore = restoreDebugStore_,
          .layoutRestorer = layoutRestorer_,
          .launchAtLoginService = launchAtLoginService_,
          .windowProvider = windowListProvider_,
          .displaySnapshotProvider = displaySnapshotProvider_,
          .keyMonitors = platform_.keyMonitors,
          .applicationCatalog = platform_.applicationCatalog,
          .desktopInformation = platform_.desktopInformation,
          .host = platform_.applicationHost,
          .linkOpener = platform_.linkOpener,
          .scheduler = platform_.scheduler,
          .clock = platform_.clock,
          .dataDirectory = paths().rootURL,
          .processIdentifier = platform_.processIdentifier,
          .saveCurrentLayout = [this](const Rect& beside) { capturePopoverController_.show(beside); },
      })),
      settingsWindowController_(*settingsWindow_, platform_.applicationHost, resetCoordinator_),
      capturePopoverController_(captureService_, profileStore_, layoutChanges_, currentProfileViewModel_,
                                profileListViewModel_, *popover_) {}

void AppDelegate::applicationDidFinishLaunching() {
    launchAtLoginService_.reconcile(settingsStore_, LaunchAtLoginService::Missing::enable);
    profileListViewModel_.reload();
    platform_.statusItem.setOnNoStatusArea([this] { showThatItRuns(); });
    if (!statusItemController_)
        statusItemController_ = std::make_unique<StatusItemController>(StatusItemController::Collaborators{
            .permissionStatusViewModel = permissionStatusViewModel_,
            .settingsWindowController = settingsWindowController_,
            .currentProfileViewModel = currentProfileViewModel_,
            .profileListViewModel = profileListViewModel_,
            .capturePopoverController = capturePopoverController_,
            .profileStore = profileStore_,
            .layoutRestorer = layoutRestorer_,
            .shortcutManager = shortcutManager_,
            .statusItem = platform_.statusItem,
            .host = platform_.applicationHost,
            .linkOpener = platform_.linkOpener,
            .scheduler = platform_.scheduler,
        });

    // The services that call back live in this object, so these callbacks cannot outlive it.
    autoRestoreCoordinator_.onFeedback = [this](const RestoreResult& result) {
        statusItemController_->showRestoreFeedback(result);
    };
    shortcutManager_.onAutoDetect = [this] { restoreMatchedDefaultLayout(); };
    shortcutManager_.onLayoutRestore = [this](const Uuid& layoutID) {
        layoutRestorer_.restore(layoutID, RestoreTriggerSource::shortcut);
    };

    permissionSubscription_ = permissionStatusViewModel_.state.subscribe(
        [this](AccessibilityPermissionState state) { permissionChanged(state); });
    // What failed may have been chosen in the menu; its notice is in the settings window.
    noticeSubscription_ = layoutChanges_.notice.subscribe([this](const auto& notice) {
        if (notice && notice->kind == LayoutChanges::Notice::Kind::failed)
            settingsWindowController_.bringForward();
    });
    if (observers_.empty())
        for (const SystemEvent event :
             {SystemEvent::screenParametersChanged, SystemEvent::didWake, SystemEvent::screenIsUnlocked,
              SystemEvent::didBecomeActive, SystemEvent::trustMayHaveChanged})
            observers_.push_back(platform_.systemEvents.observe(event, [this] { refresh(); }));
    refresh();
}

AppSupportPaths AppDelegate::paths() const {
    return {platform_.fileSystem, platform_.applicationSupportDirectory / "Tavrin"};
}

/// Without a status area the program is invisible, so the settings window is shown, once.
void AppDelegate::showThatItRuns() {
    constexpr auto wasShown = "tavrin.statusArea.absenceWasShown";
    if (platform_.userDefaults.boolean(wasShown))
        return;
    platform_.userDefaults.setBoolean(wasShown, true);
    settingsWindowController_.show(SettingsPane::layouts);
}

void AppDelegate::permissionChanged(AccessibilityPermissionState state) {
    if (state == AccessibilityPermissionState::granted) {
        shortcutManager_.start();
        autoRestoreCoordinator_.start();
    } else {
        shortcutManager_.stop();
        autoRestoreCoordinator_.stop();
    }
}

void AppDelegate::refresh() {
    permissionStatusViewModel_.refresh();
    currentProfileViewModel_.refresh();
}

void AppDelegate::restoreMatchedDefaultLayout() {
    refresh();
    if (const auto layout =
            MatchedDefaultLayoutResolver(profileStore_).resolve(displaySnapshotProvider_.currentSnapshot()))
        layoutRestorer_.restore(*layout, RestoreTriggerSource::shortcut);
}

} // namespace tavrin
