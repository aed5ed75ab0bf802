#include "ui/layout_changes.h"

#include "base/fatal.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin {
namespace {

constexpr const char* undoLabel = "Undo";

} // namespace

std::string failureText(const CaptureService::Error& error) {
    if (const auto* stored = std::get_if<StoreError>(&error))
        return fmt::format("Nothing was stored. {}", description(*stored));
    switch (std::get<CaptureError>(error)) {
    case CaptureError::emptyLayoutName:
        return "Nothing was stored: the layout has no name.";
    case CaptureError::nameTooLong:
        return "Nothing was stored: the name is too long.";
    case CaptureError::noWindowsFound:
        return "Nothing was stored: no windows are open.";
    case CaptureError::noProfileMatched:
        return "Nothing was stored: the display setup no longer exists.";
    }
    fatal("a failure without a text");
}

std::string windowCountText(std::size_t count) {
    return fmt::format("{} window{}", count, count == 1 ? "" : "s");
}

std::string layoutCountText(std::size_t count) {
    return fmt::format("{} layout{}", count, count == 1 ? "" : "s");
}

void LayoutChanges::save(std::string_view name, const Uuid& profileID) {
    const std::string wanted(name);
    const Uuid setup = profileID;
    auto old = before();
    if (!old)
        return reportFailure(old.error());
    const auto captured = collaborators_.captureService.capture(wanted, SavedLayoutKind::appSpecific, setup);
    if (!captured)
        return reportFailure(captured.error());
    const std::string count = windowCountText(captured->entries.size());
    if (old->setups.layout(captured->id))
        offerUndo(fmt::format("Updated with {}.", count), setup, std::move(*old));
    else if (old->setups.layoutsOf(setup).empty())
        offerDefault(*captured);
    else
        tell(Notice{.text = fmt::format("Saved “{}” with {}.", captured->name, count)}, nullptr);
    reload();
}

void LayoutChanges::update(const Uuid& layoutID) {
    const auto setups = collaborators_.profileStore.load();
    if (!setups)
        return reportFailure(setups.error());
    const SavedLayout* layout = setups->layout(layoutID);
    if (!layout)
        return reportFailure(StoreError(LayoutNotFound{layoutID}));
    save(layout->name, layout->profileID);
}

void LayoutChanges::deleteLayout(const Uuid& layoutID) {
    const Uuid id = layoutID;
    auto old = before();
    if (!old)
        return reportFailure(old.error());
    const SavedLayout* layout = old->setups.layout(id);
    if (!layout)
        return reportFailure(StoreError(LayoutNotFound{id}));
    if (const auto deleted = collaborators_.profileStore.deleteLayout(id); !deleted)
        return reportFailure(deleted.error());
    removeShortcutsOfMissingLayouts();
    const Uuid setup = layout->profileID;
    offerUndo(fmt::format("Deleted layout “{}”.", layout->name), setup, std::move(*old));
    reload();
}

void LayoutChanges::deleteSetup(const Uuid& profileID) {
    const Uuid id = profileID;
    auto old = before();
    if (!old)
        return reportFailure(old.error());
    const MonitorProfile* profile = old->setups.profile(id);
    if (!profile)
        return reportFailure(StoreError(ProfileNotFound{id}));
    if (const auto deleted = collaborators_.profileStore.deleteProfile(id); !deleted)
        return reportFailure(deleted.error());
    removeShortcutsOfMissingLayouts();
    offerUndo(fmt::format("Deleted display setup “{}”.", profile->name), id, std::move(*old));
    reload();
}

void LayoutChanges::reportFailure(const CaptureService::Error& error) {
    tell(Notice{.text = failureText(error), .kind = Notice::Kind::failed}, nullptr);
    reload();
}

void LayoutChanges::act() {
    callCopy(action_);
}

std::expected<LayoutChanges::Before, StoreError> LayoutChanges::before() {
    auto setups = collaborators_.profileStore.load();
    if (!setups)
        return std::unexpected(setups.error());
    return Before{std::move(*setups), collaborators_.shortcutManager.layoutShortcuts.value()};
}

void LayoutChanges::tell(std::optional<Notice> told, std::function<void()> action) {
    action_ = std::move(action);
    // An offer without a loss behind it may be taken until the next change.
    const bool expires = told && (told->isUndo || told->actionLabel.empty());
    expiry_ = expires ? collaborators_.scheduler.after(noticeDuration, [this] { dismiss(); }) : Token();
    notice.set(std::nullopt); // the same words again are news
    notice.set(std::move(told));
}

void LayoutChanges::offerUndo(std::string text, const Uuid& profileID, Before before) {
    tell(Notice{.text = std::move(text), .actionLabel = undoLabel, .isUndo = true},
         [this, profileID, before = std::move(before)] { putBack(profileID, before); });
}

void LayoutChanges::offerDefault(const SavedLayout& layout) {
    tell(Notice{.text = fmt::format("Saved “{}” with {}. Restore it whenever these displays are connected?",
                                    layout.name, windowCountText(layout.entries.size())),
                .actionLabel = "Restore Automatically"},
         [this, profileID = layout.profileID, layoutID = layout.id] {
             const auto done = collaborators_.profileStore.setDefaultLayout(profileID, layoutID);
             if (!done)
                 return reportFailure(done.error());
             dismiss();
             reload();
         });
}

void LayoutChanges::putBack(const Uuid& profileID, const Before& before) {
    const auto done = collaborators_.profileStore.putBack(profileID, before.setups);
    if (!done)
        return reportFailure(done.error());
    ShortcutManager& shortcuts = collaborators_.shortcutManager;
    const auto isTaken = [&](const KeyCombo& combo) {
        return shortcuts.autoDetectShortcut.value() == combo ||
               std::ranges::any_of(shortcuts.layoutShortcuts.value(),
                                   [&](const auto& shortcut) { return shortcut.second == combo; });
    };
    for (const auto& [layoutID, combo] : before.shortcuts)
        if (!shortcuts.layoutShortcuts.value().contains(layoutID) && !isTaken(combo))
            shortcuts.setLayoutShortcut(combo, layoutID);
    tell(Notice{.text = "Undone."}, nullptr);
    reload();
}

void LayoutChanges::removeShortcutsOfMissingLayouts() {
    const auto setups = collaborators_.profileStore.load();
    if (!setups)
        return;
    std::vector<Uuid> remaining;
    for (const SavedLayout& layout : setups->layouts())
        remaining.push_back(layout.id);
    collaborators_.shortcutManager.pruneLayoutShortcuts(remaining);
}

void LayoutChanges::reload() {
    collaborators_.currentProfileViewModel.refresh();
    collaborators_.profileListViewModel.reload();
}

} // namespace tavrin
