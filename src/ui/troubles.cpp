#include "ui/troubles.h"

#include <fmt/format.h>

namespace tavrin {

Troubles::Troubles(const SettingsCollaborators& collaborators) : collaborators_(collaborators) {
    subscriptions_.push_back(
        collaborators_.permissionStatusViewModel.state.subscribe([this](const auto&) { refresh(); }));
    subscriptions_.push_back(collaborators_.permissionStatusViewModel.checked.connect([this] { refresh(); }));
    subscriptions_.push_back(collaborators_.profileListViewModel.reloaded.connect([this] { refresh(); }));
}

void Troubles::refresh() {
    std::vector<Trouble> list;
    const PermissionStatusViewModel& permission = collaborators_.permissionStatusViewModel;
    if (permission.state.value() == AccessibilityPermissionState::denied) {
        const auto texts = collaborators_.desktopInformation.texts();
        const auto& help = texts.missingPermission;
        list.push_back({Trouble::Kind::permission, permission.title(),
                        help.empty() ? permission.message() : help, texts.requestPermission});
    }
    auto files = collaborators_.profileStore.unreadableFiles();
    for (auto& file : collaborators_.settingsStore.unreadableFiles())
        files.push_back(std::move(file));
    for (const UnreadableFile& file : files) {
        const std::string reason = file.reason();
        list.push_back({Trouble::Kind::dataFile,
                        fmt::format("“{}” cannot be read", file.file.filename().string()),
                        fmt::format("Reason: {}{} Its content is not shown, and nothing is saved to it "
                                    "until it can be read again or is set aside.",
                                    reason, reason.ends_with('.') ? "" : ".")});
    }
    if (list == list_)
        return;
    list_ = std::move(list);
    changed.emit();
}

void Troubles::setFilesAside() {
    auto result = collaborators_.profileStore.setAsideUnreadableFiles();
    if (result)
        result = collaborators_.settingsStore.setAsideUnreadableFiles();
    if (!result)
        collaborators_.layoutChanges.reportFailure(result.error());
    collaborators_.currentProfileViewModel.refresh();
    collaborators_.profileListViewModel.reload();
}

} // namespace tavrin
