#include "app/status_item_controller.h"

#include <algorithm>

namespace tavrin {

StatusItemController::StatusItemController(Collaborators collaborators) : collaborators_(collaborators) {
    StatusItemSurface& statusItem = collaborators_.statusItem;
    statusItem.setToolTip("Tavrin");
    showNormalIcon();
    rebuildMenu();
    statusItem.setMenuCallbacks(
        [this] { menuNeedsUpdate(); },
        [this](MenuAction action, const std::optional<Uuid>& layoutID) { perform(action, layoutID); });
    const auto rebuild = [this](const auto&) { rebuildMenuSoon(); };
    subscriptions_.push_back(collaborators_.permissionStatusViewModel.state.subscribe(rebuild));
    subscriptions_.push_back(collaborators_.currentProfileViewModel.setup.subscribe(rebuild));
    subscriptions_.push_back(collaborators_.profileListViewModel.profiles.subscribe(rebuild));
    subscriptions_.push_back(collaborators_.shortcutManager.layoutShortcuts.subscribe(rebuild));
    subscriptions_.push_back(collaborators_.layoutRestorer.restored.connect(
        [this](const RestoreResult& result) { showRestoreFeedback(result); }));
    statusItem.show();
}

StatusItemController::~StatusItemController() {
    collaborators_.statusItem.setMenuCallbacks({}, {});
}

void StatusItemController::showRestoreFeedback(const RestoreResult& result) {
    collaborators_.statusItem.setTemplateImage(feedbackSymbol(result));
    feedbackTask_ = collaborators_.scheduler.after(feedbackDuration, [this] { showNormalIcon(); });
}

void StatusItemController::perform(MenuAction action, const std::optional<Uuid>& layoutID) {
    switch (action) {
    case MenuAction::none:
        return;
    case MenuAction::saveCurrentLayout:
        return collaborators_.capturePopoverController.show();
    case MenuAction::quickUpdateLayout:
        return layoutID ? quickUpdateLayout(*layoutID) : void();
    case MenuAction::restoreLayout:
        if (layoutID)
            collaborators_.layoutRestorer.restore(*layoutID, RestoreTriggerSource::menuBar);
        return;
    case MenuAction::confirmSuggestedProfile:
        collaborators_.currentProfileViewModel.confirmSuggestedProfile();
        return collaborators_.profileListViewModel.reload();
    case MenuAction::openSettings:
        return collaborators_.settingsWindowController.show(SettingsPane::layouts);
    case MenuAction::openAccessibilitySettings:
        static_cast<void>(collaborators_.linkOpener.openAccessibilitySettings());
        return;
    case MenuAction::recheckPermission:
        collaborators_.permissionStatusViewModel.recheckAndPoll();
        return collaborators_.currentProfileViewModel.refresh();
    case MenuAction::quit:
        return collaborators_.host.terminate();
    }
}

void StatusItemController::quickUpdateLayout(const Uuid& layoutID) {
    collaborators_.capturePopoverController.updateLayout(layoutID);
}

void StatusItemController::menuNeedsUpdate() {
    collaborators_.permissionStatusViewModel.recheck();
    collaborators_.currentProfileViewModel.refresh();
    collaborators_.profileListViewModel.reload();
    rebuildMenu();
}

void StatusItemController::showNormalIcon() {
    if (!collaborators_.statusItem.setTemplateImage("MenuBarGlyph"))
        collaborators_.statusItem.setTitle("T");
}

void StatusItemController::rebuildMenu() {
    rebuildTask_.release();
    const CurrentSetup& current = collaborators_.currentProfileViewModel.setup.value();
    const auto setups = collaborators_.profileStore.load();
    const auto* unreadable = setups ? nullptr : std::get_if<UnreadableFile>(&setups.error());
    // The file may be newer: choosing a default layout does not read the current setup again.
    auto matched = current.profile;
    if (matched && setups)
        if (const MonitorProfile* stored = setups->profile(matched->id))
            matched = *stored;
    collaborators_.statusItem.setMenu(
        statusItemMenu({.permission = collaborators_.permissionStatusViewModel.state.value(),
                        .currentProfileName = current.currentProfileName(),
                        .suggestedProfileName = current.suggestedProfileName(),
                        .matchExplanation = current.matchExplanation,
                        .requiresConfirmation = current.requiresConfirmation(),
                        .matchedProfile = std::move(matched),
                        .setups = setups.value_or(SavedSetups{}),
                        .unreadableFile = unreadable ? unreadable->file.filename().string() : std::string(),
                        .layoutShortcuts = collaborators_.shortcutManager.layoutShortcuts.value(),
                        .version = collaborators_.host.shortVersion()}));
}

void StatusItemController::rebuildMenuSoon() {
    // One refresh publishes several values; one menu is enough for them.
    rebuildTask_ = collaborators_.scheduler.after(Seconds{0}, [this] { rebuildMenu(); });
}

std::string feedbackSymbol(const RestoreResult& result) {
    if (result.isCompleteSuccess())
        return "checkmark.circle.fill";
    if (result.isPartialSuccess())
        return "exclamationmark.triangle.fill";
    return "xmark.circle";
}

} // namespace tavrin
