#include "ui/layouts_pane.h"

#include "base/text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace tavrin {
namespace {

constexpr std::size_t namedLayouts = 6;

std::string counted(std::size_t count, const char* thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

} // namespace

std::string windowCountText(std::size_t count) {
    return counted(count, "window");
}

DeletionQuestion layoutDeletionQuestion(const LayoutCard& layout, const SetupCard& setup) {
    std::string message =
        fmt::format("The saved places of {} will be lost.", windowCountText(layout.windowCount));
    if (layout.shortcut)
        message += fmt::format(" Its shortcut {} will be removed.", layout.shortcut->displayString());
    if (layout.isDefault)
        message += fmt::format(" It is the default layout of “{}”, which will have none then.", setup.name);
    return {fmt::format("Delete layout “{}”?", layout.name), message, "Delete Layout"};
}

DeletionQuestion setupDeletionQuestion(const SetupCard& setup, std::size_t associationCount) {
    std::string message;
    if (setup.layouts.empty()) {
        message = "It has no layouts.";
    } else {
        std::vector<std::string> names;
        for (const LayoutCard& layout : setup.layouts)
            if (names.size() < namedLayouts)
                names.push_back("“" + layout.name + "”");
        const std::size_t others = setup.layouts.size() - names.size();
        message = fmt::format("{} will be lost: {}{}.", counted(setup.layouts.size(), "layout"),
                              fmt::join(names, ", "), others ? fmt::format(" and {} more", others) : "");
    }
    const auto shortcuts = static_cast<std::size_t>(std::ranges::count_if(
        setup.layouts, [](const LayoutCard& layout) { return layout.shortcut.has_value(); }));
    if (shortcuts)
        message += fmt::format(" {} will be removed.", counted(shortcuts, "shortcut"));
    if (associationCount)
        message += fmt::format(" {} will be forgotten.", counted(associationCount, "confirmed recognition"));
    return {fmt::format("Delete display setup “{}”?", setup.name), message, "Delete Setup"};
}

std::optional<std::string> relativeTimeText(Timestamp then, Timestamp now) {
    using namespace std::chrono;
    const auto passed = now - then;
    if (passed < seconds{0} || passed >= hours{24})
        return std::nullopt;
    if (passed < minutes{1})
        return "just now";
    const bool inMinutes = passed < hours{1};
    const auto count =
        inMinutes ? duration_cast<minutes>(passed).count() : duration_cast<hours>(passed).count();
    return fmt::format("{} {}{} ago", count, inMinutes ? "minute" : "hour", count == 1 ? "" : "s");
}

namespace {

std::string displaysText(const MonitorProfile& profile) {
    const auto count = profile.displayFingerprint.displayCount;
    return fmt::format("{} {}", count, count == 1 ? "display" : "displays");
}

std::optional<std::string> nameRefusal(std::string_view name, const char* emptyText) {
    const auto checked = CaptureService::validatedName(name);
    if (checked)
        return std::nullopt;
    return checked.error() == CaptureError::nameTooLong
               ? fmt::format("Use at most {} characters.", CaptureService::maximumNameLength)
               : std::string(emptyText);
}

std::string failureText(const CaptureService::Error& error) {
    const auto* refused = std::get_if<CaptureError>(&error);
    return refused && *refused == CaptureError::noWindowsFound ? "Not updated: no windows are open."
                                                               : "Not updated.";
}

} // namespace

LayoutsPane::LayoutsPane(const SettingsCollaborators& collaborators) : collaborators_(collaborators) {
    subscriptions_.push_back(collaborators_.profileListViewModel.reloaded.connect([this] { publish(); }));
    subscriptions_.push_back(
        collaborators_.currentProfileViewModel.setup.subscribe([this](const auto&) { publish(); }));
    subscriptions_.push_back(
        collaborators_.shortcutManager.layoutShortcuts.subscribe([this](const auto&) { publish(); }));
}

void LayoutsPane::appear() {
    reloadModels();
}

void LayoutsPane::saveLayout(const Rect& beside) {
    if (collaborators_.saveCurrentLayout)
        collaborators_.saveCurrentLayout(beside);
}

void LayoutsPane::confirmSuggestion() {
    collaborators_.currentProfileViewModel.confirmSuggestedProfile();
    reloadModels();
}

void LayoutsPane::restore(const Uuid& layoutID) {
    if (!find(layoutID))
        return;
    const auto result = collaborators_.layoutRestorer.restore(layoutID, RestoreTriggerSource::menuBar);
    statusLayoutID_ = layoutID;
    status_ = result ? fmt::format("Restored: {} of {} in place.", result->matched,
                                   windowCountText(static_cast<std::size_t>(result->totalSaved)))
                     : std::string();
    reloadModels();
}

void LayoutsPane::update(const Uuid& layoutID) {
    // The displays may have changed since the pane was read.
    collaborators_.currentProfileViewModel.refresh();
    const auto found = find(layoutID);
    if (!found || !found->layout.canUpdate)
        return;
    const auto captured = collaborators_.captureService.capture(
        found->layout.name, SavedLayoutKind::appSpecific, found->setup.id);
    statusLayoutID_ = layoutID;
    status_ = captured ? fmt::format("Updated with {}.", windowCountText(captured->entries.size()))
                       : failureText(captured.error());
    reloadModels();
}

void LayoutsPane::setDefault(const Uuid& layoutID, DefaultLayout wanted) {
    if (const auto found = find(layoutID))
        static_cast<void>(collaborators_.profileStore.setDefaultLayout(
            found->setup.id, wanted == DefaultLayout::set ? std::optional(layoutID) : std::nullopt));
    reloadModels();
}

std::optional<std::string> LayoutsPane::layoutNameRefusal(const Uuid& layoutID, std::string_view name) const {
    if (auto refusal = nameRefusal(name, "Enter a name for this layout."))
        return refusal;
    const auto found = find(layoutID);
    // Saving finds the layout to replace by its name, ignoring case.
    const std::string wanted = lowercased(trimmed(name));
    if (found && std::ranges::any_of(found->setup.layouts, [&](const LayoutCard& other) {
            return other.id != layoutID && lowercased(other.name) == wanted;
        }))
        return "Another layout of this display setup has this name.";
    return std::nullopt;
}

std::optional<std::string> LayoutsPane::setupNameRefusal(std::string_view name) const {
    return nameRefusal(name, "Enter a name for this display setup.");
}

void LayoutsPane::renameLayout(const Uuid& layoutID, std::string_view name) {
    const auto found = find(layoutID);
    if (found && found->layout.name != trimmed(name) && !layoutNameRefusal(layoutID, name))
        static_cast<void>(collaborators_.profileStore.renameLayout(layoutID, name));
    reloadModels();
}

void LayoutsPane::renameSetup(const Uuid& profileID, std::string_view name) {
    const auto setup = std::ranges::find(content_.setups, profileID, &SetupCard::id);
    if (setup != content_.setups.end() && setup->name != trimmed(name) && !setupNameRefusal(name))
        static_cast<void>(collaborators_.profileListViewModel.renameProfile(profileID, name));
    reloadModels();
}

std::optional<DeletionQuestion> LayoutsPane::layoutDeletionQuestion(const Uuid& layoutID) const {
    const auto found = find(layoutID);
    return found ? std::optional(tavrin::layoutDeletionQuestion(found->layout, found->setup)) : std::nullopt;
}

std::optional<DeletionQuestion> LayoutsPane::setupDeletionQuestion(const Uuid& profileID) const {
    const auto setup = std::ranges::find(content_.setups, profileID, &SetupCard::id);
    const auto& profiles = collaborators_.profileListViewModel.profiles.value();
    const auto profile = std::ranges::find(profiles, profileID, &MonitorProfile::id);
    if (setup == content_.setups.end() || profile == profiles.end())
        return std::nullopt;
    return tavrin::setupDeletionQuestion(*setup, profile->learnedAssociations.size());
}

void LayoutsPane::deleteLayout(const Uuid& layoutID) {
    static_cast<void>(collaborators_.profileStore.deleteLayout(layoutID));
    removeShortcutsOfMissingLayouts();
    reloadModels();
}

void LayoutsPane::deleteSetup(const Uuid& profileID) {
    static_cast<void>(collaborators_.profileListViewModel.deleteProfile(profileID));
    removeShortcutsOfMissingLayouts();
    reloadModels();
}

void LayoutsPane::removeShortcutsOfMissingLayouts() {
    const auto setups = collaborators_.profileStore.load();
    if (!setups)
        return;
    std::vector<Uuid> remaining;
    for (const SavedLayout& layout : setups->layouts())
        remaining.push_back(layout.id);
    collaborators_.shortcutManager.pruneLayoutShortcuts(remaining);
}

void LayoutsPane::reloadModels() {
    collaborators_.currentProfileViewModel.refresh();
    collaborators_.profileListViewModel.reload();
}

void LayoutsPane::publish() {
    auto content = read();
    if (content == content_)
        return;
    content_ = std::move(content);
    changed.emit();
}

std::optional<LayoutsPane::Found> LayoutsPane::find(const Uuid& layoutID) const {
    for (const SetupCard& setup : content_.setups)
        for (const LayoutCard& layout : setup.layouts)
            if (layout.id == layoutID)
                return Found{setup, layout};
    return std::nullopt;
}

LayoutsPaneContent LayoutsPane::read() const {
    const CurrentSetup& current = collaborators_.currentProfileViewModel.setup.value();
    LayoutsPaneContent content{.suggestion = suggestion(),
                               .currentSetupText = current.matchExplanation.value_or("")};
    const auto setups = collaborators_.profileStore.load().value_or(SavedSetups{});
    const auto& shortcuts = collaborators_.shortcutManager.layoutShortcuts.value();
    for (const MonitorProfile& profile : collaborators_.profileListViewModel.profiles.value()) {
        SetupCard setup{.id = profile.id,
                        .name = profile.name,
                        .isCurrent = current.profile && current.profile->id == profile.id,
                        .detail = fmt::format("{} · {}", displaysText(profile),
                                              ProfileListViewModel::associationCountText(profile))};
        for (const SavedLayout& layout : setups.layoutsOf(profile.id)) {
            const auto shortcut = shortcuts.find(layout.id);
            // A capture replaces the first layout of that name.
            const bool isFirstOfItsName = std::ranges::none_of(setup.layouts, [&](const LayoutCard& earlier) {
                return lowercased(earlier.name) == lowercased(layout.name);
            });
            setup.layouts.push_back(
                {.id = layout.id,
                 .name = layout.name,
                 .windowCount = layout.entries.size(),
                 .updatedAt = layout.updatedAt,
                 .isDefault = profile.defaultLayoutID == layout.id,
                 .canUpdate = setup.isCurrent && isFirstOfItsName,
                 .shortcut = shortcut == shortcuts.end() ? std::nullopt : std::optional(shortcut->second),
                 .picture = makeLayoutPicture(layout),
                 .status = layout.id == statusLayoutID_ ? status_ : std::string()});
        }
        content.setups.push_back(std::move(setup));
    }
    std::ranges::stable_partition(content.setups, [&](const SetupCard& setup) {
        return setup.isCurrent || setup.id == current.suggestedProfileID();
    });
    return content;
}

std::optional<SetupSuggestion> LayoutsPane::suggestion() const {
    const CurrentSetup& current = collaborators_.currentProfileViewModel.setup.value();
    if (!current.requiresConfirmation())
        return std::nullopt;
    return SetupSuggestion{.title = fmt::format("{}: {}", suggestedMatchExplanation().title,
                                                current.suggestedProfileName().value_or("")),
                           .message = current.matchExplanation.value_or(""),
                           .canConfirm = current.suggestedProfileID().has_value()};
}

} // namespace tavrin
