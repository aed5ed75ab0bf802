#include "ui/layouts_pane.h"

#include "base/text.h"
#include "ui/shortcuts_pane.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace tavrin {
namespace {

constexpr std::size_t namedLayouts = 6;
constexpr Seconds ageInterval{30};

std::string counted(std::size_t count, const char* thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::optional<std::string> nameRefusal(std::string_view name, const char* emptyText) {
    const auto checked = CaptureService::validatedName(name);
    if (checked)
        return std::nullopt;
    return checked.error() == CaptureError::nameTooLong
               ? fmt::format("Use at most {} characters.", CaptureService::maximumNameLength)
               : std::string(emptyText);
}

/// The applications of which fewer windows are open than the layout has.
std::vector<std::string> missingApplications(const SavedLayout& layout,
                                             const std::vector<WindowInfo>& windows) {
    std::map<std::optional<std::string>, std::int64_t> open;
    for (const WindowInfo& window : windows)
        ++open[window.bundleIdentifier];
    std::vector<std::string> names;
    for (const SavedLayoutEntry& entry : layout.entries) {
        if (--open[entry.bundleIdentifier] >= 0)
            continue;
        const std::string name = entry.appName.value_or(entry.bundleIdentifier.value_or("a window"));
        if (std::ranges::find(names, name) == names.end())
            names.push_back(name);
    }
    return names;
}

std::string listed(const std::vector<std::string>& names) {
    const std::size_t shown = std::min(names.size(), namedLayouts);
    const std::size_t others = names.size() - shown;
    return fmt::format("{}{}",
                       fmt::join(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(shown), ", "),
                       others ? fmt::format(" and {} more", others) : "");
}

} // namespace

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

LayoutsPane::LayoutsPane(const SettingsCollaborators& collaborators) : collaborators_(collaborators) {
    const auto tell = [this](const auto&...) { publish(); };
    subscriptions_.push_back(collaborators_.profileListViewModel.reloaded.connect(tell));
    subscriptions_.push_back(collaborators_.currentProfileViewModel.setup.subscribe(tell));
    subscriptions_.push_back(collaborators_.shortcutManager.layoutShortcuts.subscribe(tell));
    subscriptions_.push_back(collaborators_.permissionStatusViewModel.state.subscribe(tell));
    // The report of a restore goes when the displays change.
    subscriptions_.push_back(collaborators_.currentProfileViewModel.setup.subscribe(
        [this, arrangement = std::string()](const CurrentSetup& setup) mutable {
            if (std::exchange(arrangement, setup.arrangementSignature) != setup.arrangementSignature)
                clearReport();
        }));
}

void LayoutsPane::appear() {
    reloadModels();
}

void LayoutsPane::setFilter(std::string_view filter) {
    filter_ = foldedTitle(filter);
    publish();
}

void LayoutsPane::setExpanded(const Uuid& profileID, bool isExpanded) {
    foldChoices_[profileID] = isExpanded;
    publish();
}

void LayoutsPane::saveLayout(const Rect& beside) {
    beginAction();
    callCopy(collaborators_.saveCurrentLayout, beside);
}

void LayoutsPane::confirmSetup(const Uuid& profileID) {
    beginAction();
    collaborators_.currentProfileViewModel.confirm(profileID);
    reloadModels();
}

void LayoutsPane::restore(const Uuid& layoutID) {
    const Uuid id = layoutID;
    beginAction();
    if (const auto result = collaborators_.layoutRestorer.restore(id, RestoreTriggerSource::menuBar))
        setReport(id, report(*result, id));
    reloadModels();
}

void LayoutsPane::update(const Uuid& layoutID) {
    const Uuid id = layoutID;
    beginAction();
    // The displays may have changed since the pane was read.
    collaborators_.currentProfileViewModel.refresh();
    for (const SetupCard& setup : content_.setups)
        for (const LayoutCard& layout : setup.layouts)
            if (layout.id == id && layout.canUpdate)
                return collaborators_.layoutChanges.update(id);
}

void LayoutsPane::setDefault(const Uuid& layoutID, DefaultLayout wanted) {
    beginAction();
    const SavedSetups setups = stored();
    if (const SavedLayout* layout = setups.layout(layoutID))
        if (const auto done = collaborators_.profileStore.setDefaultLayout(
                layout->profileID, wanted == DefaultLayout::set ? std::optional(layout->id) : std::nullopt);
            !done)
            collaborators_.layoutChanges.reportFailure(done.error());
    reloadModels();
}

std::optional<std::string> LayoutsPane::layoutNameRefusal(const Uuid& layoutID, std::string_view name) const {
    if (auto refusal = nameRefusal(name, "Enter a name for this layout."))
        return refusal;
    const SavedSetups setups = stored();
    const SavedLayout* renamed = setups.layout(layoutID);
    // Saving finds the layout to replace by its name, ignoring case.
    const std::string wanted = lowercased(trimmed(name));
    if (renamed && std::ranges::any_of(setups.layoutsOf(renamed->profileID), [&](const SavedLayout& other) {
            return other.id != layoutID && lowercased(other.name) == wanted;
        }))
        return "Another layout of this display setup has this name.";
    return std::nullopt;
}

std::optional<std::string> LayoutsPane::setupNameRefusal(std::string_view name) const {
    return nameRefusal(name, "Enter a name for this display setup.");
}

void LayoutsPane::renameLayout(const Uuid& layoutID, std::string_view name) {
    const SavedSetups setups = stored();
    const SavedLayout* renamed = setups.layout(layoutID);
    if (!renamed || renamed->name == trimmed(name) || layoutNameRefusal(layoutID, name))
        return;
    beginAction();
    if (const auto done = collaborators_.profileStore.renameLayout(layoutID, name); !done)
        collaborators_.layoutChanges.reportFailure(done.error());
    reloadModels();
}

void LayoutsPane::renameSetup(const Uuid& profileID, std::string_view name) {
    const auto setup = std::ranges::find(content_.setups, profileID, &SetupCard::id);
    if (setup == content_.setups.end() || setup->name == trimmed(name) || setupNameRefusal(name))
        return;
    beginAction();
    if (const auto done = collaborators_.profileListViewModel.renameProfile(profileID, name); !done)
        collaborators_.layoutChanges.reportFailure(done.error());
    reloadModels();
}

std::optional<DeletionQuestion> LayoutsPane::layoutDeletionQuestion(const Uuid& layoutID) {
    const SavedSetups setups = stored();
    const SavedLayout* layout = setups.layout(layoutID);
    if (!layout)
        return std::nullopt;
    std::string message =
        fmt::format("The saved places of {} will be lost.", windowCountText(layout->entries.size()));
    const auto& shortcuts = collaborators_.shortcutManager.layoutShortcuts.value();
    if (const auto shortcut = shortcuts.find(layoutID); shortcut != shortcuts.end())
        message += fmt::format(" Its shortcut {} ({}) will be removed.", shortcut->second.displayString(),
                               shortcutInWords(shortcut->second));
    for (const MonitorProfile& profile : collaborators_.profileListViewModel.profiles.value())
        if (profile.defaultLayoutID == layoutID)
            message +=
                fmt::format(" It is the default layout of “{}”, which will have none then.", profile.name);
    return DeletionQuestion{fmt::format("Delete layout “{}”?", layout->name), message, "Delete Layout"};
}

std::optional<DeletionQuestion> LayoutsPane::setupDeletionQuestion(const Uuid& profileID) {
    const auto& profiles = collaborators_.profileListViewModel.profiles.value();
    const auto profile = std::ranges::find(profiles, profileID, &MonitorProfile::id);
    if (profile == profiles.end())
        return std::nullopt;
    const auto& shortcuts = collaborators_.shortcutManager.layoutShortcuts.value();
    std::vector<std::string> names;
    std::size_t shortcutCount = 0;
    const SavedSetups setups = stored();
    for (const SavedLayout& layout : setups.layoutsOf(profileID)) {
        names.push_back("“" + layout.name + "”");
        shortcutCount += shortcuts.count(layout.id);
    }
    std::string message =
        names.empty() ? std::string("It has no layouts.")
                      : fmt::format("{} will be lost: {}.", layoutCountText(names.size()), listed(names));
    if (shortcutCount)
        message += fmt::format(" {} will be removed.", counted(shortcutCount, "shortcut"));
    if (const std::size_t count = profile->learnedAssociations.size())
        message += fmt::format(" {} will be forgotten.", counted(count, "confirmed recognition"));
    return DeletionQuestion{fmt::format("Delete display setup “{}”?", profile->name), message,
                            "Delete Setup"};
}

void LayoutsPane::deleteLayout(const Uuid& layoutID) {
    beginAction();
    collaborators_.layoutChanges.deleteLayout(layoutID);
}

void LayoutsPane::deleteSetup(const Uuid& profileID) {
    beginAction();
    collaborators_.layoutChanges.deleteSetup(profileID);
}

SavedSetups LayoutsPane::stored() const {
    return collaborators_.profileStore.load().value_or(SavedSetups{});
}

RestoreReport LayoutsPane::report(const RestoreResult& result, const Uuid& layoutID) const {
    RestoreReport report{.text = fmt::format("{} of {} in place.", result.matched, result.totalSaved)};
    if (result.matched == result.totalSaved)
        return report;
    report.isWarning = true;
    report.hasDetails = true;
    const SavedSetups setups = stored();
    const SavedLayout* layout = setups.layout(layoutID);
    if (layout && result.unmatchedCount > 0)
        if (const auto missing = missingApplications(*layout, collaborators_.windowProvider.currentWindows());
            !missing.empty())
            report.text += fmt::format(" Not open: {}.", listed(missing));
    if (result.moveFailureCount > 0)
        report.text += fmt::format(" Not moved: {}.",
                                   windowCountText(static_cast<std::size_t>(result.moveFailureCount)));
    return report;
}

void LayoutsPane::setReport(const Uuid& layoutID, RestoreReport report) {
    reportLayoutID_ = layoutID;
    report_ = std::move(report);
    reportExpiry_ = collaborators_.scheduler.after(reportDuration, [this] { clearReport(); });
}

void LayoutsPane::clearReport() {
    reportLayoutID_.reset();
    reportExpiry_.release();
    publish();
}

void LayoutsPane::beginAction() {
    clearReport();
    collaborators_.layoutChanges.dismiss();
}

void LayoutsPane::reloadModels() {
    collaborators_.currentProfileViewModel.refresh();
    collaborators_.profileListViewModel.reload();
}

void LayoutsPane::publish() {
    auto content = read();
    readAgainSoon();
    if (content == content_)
        return;
    content_ = std::move(content);
    changed.emit();
}

void LayoutsPane::readAgainSoon() {
    // "Changed just now" does not stay true.
    nextReading_ = collaborators_.scheduler.after(ageInterval, [this] { publish(); });
}

LayoutsPaneContent LayoutsPane::read() const {
    const CurrentSetup& current = collaborators_.currentProfileViewModel.setup.value();
    const auto setups = collaborators_.profileStore.load();
    const auto& profiles = collaborators_.profileListViewModel.profiles.value();
    LayoutsPaneContent content{.currentSetupText = current.matchExplanation.value_or("")};
    content.isUnreadable = !setups;
    content.canSave = !content.isUnreadable && collaborators_.permissionStatusViewModel.state.value() !=
                                                   AccessibilityPermissionState::denied;
    if (current.requiresConfirmation()) {
        content.suggestionTitle = fmt::format("{}: {}", suggestedMatchExplanation().title,
                                              current.suggestedProfileName().value_or(""));
        content.suggestionMessage = content.currentSetupText;
    }
    const std::size_t count = setups ? setups->layouts().size() : 0;
    // A filter in use stays, or nobody could take it back.
    content.offersFilter = count > manyLayouts || !filter_.empty();
    content.isFoldable = count > manyLayouts && profiles.size() > 1;
    if (content.isUnreadable)
        return content; // nothing is shown of what cannot be read
    for (const MonitorProfile& profile : profiles) {
        auto setup = readSetup(profile, *setups, content.isFoldable);
        if (filter_.empty() || !setup.layouts.empty())
            content.setups.push_back(std::move(setup));
    }
    std::ranges::stable_partition(
        content.setups, [](const SetupCard& setup) { return setup.isCurrent || setup.isCandidate; });
    return content;
}

SetupCard LayoutsPane::readSetup(const MonitorProfile& profile, const SavedSetups& setups,
                                 bool isFoldable) const {
    const CurrentSetup& current = collaborators_.currentProfileViewModel.setup.value();
    SetupCard setup{.id = profile.id,
                    .name = profile.name,
                    .isCurrent = current.profile && current.profile->id == profile.id,
                    .isCandidate = std::ranges::find(current.candidates, profile.id, &MonitorProfile::id) !=
                                   current.candidates.end()};
    const auto displays = profile.displayFingerprint.displayCount;
    setup.detail = fmt::format("{} {}", displays, displays == 1 ? "display" : "displays");
    if (!profile.learnedAssociations.empty())
        setup.detail += " · " + ProfileListViewModel::associationCountText(profile);
    const auto choice = foldChoices_.find(profile.id);
    setup.isExpanded = !isFoldable || !filter_.empty() ||
                       (choice == foldChoices_.end() ? setup.isCurrent || setup.isCandidate : choice->second);
    const auto& shortcuts = collaborators_.shortcutManager.layoutShortcuts.value();
    const bool isPermitted =
        collaborators_.permissionStatusViewModel.state.value() != AccessibilityPermissionState::denied;
    std::set<std::string> names;
    std::set<Uuid> ids;
    for (const SavedLayout& layout : setups.layoutsOf(profile.id)) {
        if (!ids.insert(layout.id).second)
            continue; // a damaged file may hold a layout twice
        ++setup.layoutCount;
        // A capture replaces the first layout of that name.
        const bool isFirstOfItsName = names.insert(lowercased(layout.name)).second;
        if (!setup.isExpanded || (!filter_.empty() && !foldedTitle(layout.name).contains(filter_)))
            continue;
        const auto shortcut = shortcuts.find(layout.id);
        setup.layouts.push_back(
            {.id = layout.id,
             .name = layout.name,
             .windowCount = layout.entries.size(),
             .updatedAt = layout.updatedAt,
             .age = relativeTimeText(layout.updatedAt, collaborators_.clock.now()),
             .isDefault = profile.defaultLayoutID == layout.id,
             .canRestore = isPermitted,
             .canUpdate = isPermitted && setup.isCurrent && isFirstOfItsName,
             .shortcut = shortcut == shortcuts.end() ? std::nullopt : std::optional(shortcut->second),
             .picture = makeLayoutPicture(layout, setup.isCurrent ? LayoutPicture::ScreenNames::hidden
                                                                  : LayoutPicture::ScreenNames::shown),
             .report = layout.id == reportLayoutID_ ? report_ : RestoreReport()});
    }
    return setup;
}

} // namespace tavrin
