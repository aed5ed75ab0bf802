#include "ui/shortcuts_pane.h"

#include "base/fatal.h"

#include <algorithm>

namespace tavrin {

void ShortcutRecorderView::startRecording() {
    if (recorder_.isRecording())
        return;
    recorder_.startRecording();
    pause_ = shortcutManager_.pause();
    monitor_ = keyMonitors_.addLocalMonitor([this](const KeyEvent& event) { return handle(event); });
    changed.emit();
}

void ShortcutRecorderView::cancelRecording() {
    if (!recorder_.isRecording())
        return;
    recorder_.cancelRecording();
    stopListening();
    changed.emit();
}

void ShortcutRecorderView::clear() {
    recorder_.clear();
    changed.emit();
}

void ShortcutRecorderView::setCombo(std::optional<KeyCombo> combo) {
    if (recorder_.combo() == combo)
        return;
    recorder_.setCombo(combo);
    changed.emit();
}

bool ShortcutRecorderView::handle(const KeyEvent& event) {
    const bool isConsumed = recorder_.handle(event);
    if (!recorder_.isRecording())
        stopListening();
    if (isConsumed)
        changed.emit();
    return isConsumed;
}

void ShortcutRecorderView::stopListening() {
    monitor_.release();
    pause_.release();
}

std::string shortcutInWords(const KeyCombo& combo) {
    struct Name {
        ModifierSet modifier;
        const char* text;
    };
    std::string words;
    for (const Name& name : {Name{ModifierSet::control, "Ctrl+"}, Name{ModifierSet::option, "Alt+"},
                             Name{ModifierSet::shift, "Shift+"}, Name{ModifierSet::command, "Super+"}})
        if (combo.modifiers.contains(name.modifier))
            words += name.text;
    return words + KeyCombo::keyName(combo.keyCode);
}

ShortcutsPane::ShortcutsPane(const SettingsCollaborators& collaborators) : collaborators_(collaborators) {
    reserved_ = collaborators_.desktopInformation.texts().reservedCombos;
    recorders_[std::nullopt] = makeRecorder(std::nullopt);
    subscriptions_.push_back(collaborators_.profileListViewModel.reloaded.connect([this] { readGroups(); }));
    subscriptions_.push_back(
        collaborators_.currentProfileViewModel.setup.subscribe([this](const auto&) { readGroups(); }));
    ShortcutManager& manager = collaborators_.shortcutManager;
    subscriptions_.push_back(manager.autoDetectShortcut.subscribe([this](const auto&) { readCombos(); }));
    subscriptions_.push_back(manager.layoutShortcuts.subscribe([this](const auto&) { readCombos(); }));
    subscriptions_.push_back(manager.refusedShortcuts.subscribe([this](const auto&) {
        for (const auto& [layoutID, view] : recorders_)
            view->changed.emit();
    }));
    readGroups();
}

void ShortcutsPane::appear() {
    // A file that is away reads as an empty list and may come back.
    if (const auto setups = collaborators_.profileStore.load(); setups && !setups->layouts().empty()) {
        std::vector<Uuid> layoutIDs;
        for (const SavedLayout& layout : setups->layouts())
            layoutIDs.push_back(layout.id);
        const auto& shortcuts = collaborators_.shortcutManager.layoutShortcuts.value();
        if (std::ranges::any_of(shortcuts, [&](const auto& shortcut) {
                return std::ranges::find(layoutIDs, shortcut.first) == layoutIDs.end();
            }))
            collaborators_.shortcutManager.pruneLayoutShortcuts(layoutIDs);
    }
    readGroups();
}

ShortcutRecorderView& ShortcutsPane::recorder(const std::optional<Uuid>& layoutID) {
    const auto found = recorders_.find(layoutID);
    if (found == recorders_.end())
        fatal("a recorder without a row");
    return *found->second;
}

void ShortcutsPane::readGroups() {
    const auto setups = collaborators_.profileStore.load().value_or(SavedSetups{});
    const auto& current = collaborators_.currentProfileViewModel.setup.value().profile;
    std::vector<Group> groups;
    Recorders recorders;
    recorders[std::nullopt] = std::move(recorders_[std::nullopt]);
    for (const MonitorProfile& profile : collaborators_.profileListViewModel.profiles.value()) {
        Group group{profile.name, current && current->id == profile.id, {}};
        for (const SavedLayout& layout : setups.layoutsOf(profile.id)) {
            auto& recorder = recorders[layout.id];
            if (recorder)
                continue; // a damaged file may hold a layout twice
            group.rows.push_back({layout.id, layout.name});
            auto& kept = recorders_[layout.id];
            recorder = kept ? std::move(kept) : makeRecorder(layout.id);
        }
        if (!group.rows.empty())
            groups.push_back(std::move(group));
    }
    std::ranges::stable_partition(groups, &Group::isCurrent);
    // The views drop the recorders of removed rows in answer to `changed`.
    recorders_.swap(recorders);
    if (groups_ == groups)
        return;
    groups_ = std::move(groups);
    changed.emit();
}

void ShortcutsPane::readCombos() {
    for (const auto& [layoutID, view] : recorders_)
        view->setCombo(combo(layoutID));
}

std::optional<KeyCombo> ShortcutsPane::combo(const std::optional<Uuid>& layoutID) const {
    const ShortcutManager& manager = collaborators_.shortcutManager;
    if (!layoutID)
        return manager.autoDetectShortcut.value();
    const auto& shortcuts = manager.layoutShortcuts.value();
    const auto found = shortcuts.find(*layoutID);
    return found == shortcuts.end() ? std::nullopt : std::optional(found->second);
}

std::vector<ShortcutConflictChecker::Assignment>
ShortcutsPane::assignments(const std::optional<Uuid>& editedLayoutID) const {
    std::vector<ShortcutConflictChecker::Assignment> assignments;
    const auto add = [&](const std::optional<Uuid>& layoutID, const std::string& label) {
        if (layoutID == editedLayoutID)
            return;
        if (const auto used = combo(layoutID))
            assignments.push_back({label, *used});
    };
    add(std::nullopt, std::string(autoDetectTitle));
    std::vector<std::string> titles;
    for (const Group& group : groups_)
        for (const Row& row : group.rows)
            titles.push_back(row.title);
    for (const Group& group : groups_)
        for (const Row& row : group.rows)
            add(row.layoutID,
                std::ranges::count(titles, row.title) > 1 ? row.title + ", " + group.title : row.title);
    for (const auto& [layoutID, used] : collaborators_.shortcutManager.layoutShortcuts.value())
        if (!recorders_.contains(layoutID))
            assignments.push_back({"a layout that cannot be shown", used});
    return assignments;
}

std::string ShortcutsPane::note(const KeyCombo& combo) const {
    for (const RefusedKey& refused : collaborators_.shortcutManager.refusedShortcuts.value())
        if (refused.combo == combo)
            return refused.reason;
    return isCommonlyUsed(combo) ? "Most apps use this combination themselves." : "";
}

std::unique_ptr<ShortcutRecorderView> ShortcutsPane::makeRecorder(const std::optional<Uuid>& layoutID) {
    ShortcutRecorder recorder(
        combo(layoutID),
        [this, layoutID](std::optional<KeyCombo> recorded) {
            if (layoutID)
                collaborators_.shortcutManager.setLayoutShortcut(recorded, *layoutID);
            else
                collaborators_.shortcutManager.setAutoDetectShortcut(recorded);
        },
        [this, layoutID](const KeyCombo& proposed) {
            return ShortcutConflictChecker(reserved_).conflictMessage(proposed, assignments(layoutID));
        });
    return std::make_unique<ShortcutRecorderView>(std::move(recorder), collaborators_.shortcutManager,
                                                  collaborators_.keyMonitors);
}

} // namespace tavrin
