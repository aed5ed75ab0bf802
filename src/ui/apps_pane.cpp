#include "ui/apps_pane.h"

#include "base/text.h"

#include <algorithm>
#include <ranges>

namespace tavrin {
namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isPart(std::string_view part) {
    return !part.empty() && isLetter(part.front()) && std::ranges::all_of(part, [](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-';
    });
}

/// At least two parts with dots between them, each a letter followed by letters, digits or hyphens.
bool isBundleID(std::string_view text) {
    std::size_t parts = 0;
    for (const auto part : std::views::split(text, '.')) {
        if (!isPart(std::string_view(part.begin(), part.end())))
            return false;
        ++parts;
    }
    return parts >= 2;
}

} // namespace

void ExclusionListView::appear() {
    if (const auto settings = settingsStore_.load())
        excludedBundleIDs_ = settings->excludedBundleIDs;
    changed.emit();
}

void ExclusionListView::setNewBundleID(std::string text) {
    newBundleID_ = std::move(text);
    changed.emit();
}

bool ExclusionListView::canAdd() const {
    const std::string text = trimmed(newBundleID_);
    return isBundleID(text) && !contains(text);
}

void ExclusionListView::add() {
    if (!canAdd())
        return;
    const std::string added = trimmed(newBundleID_);
    append(added);
    if (contains(added))
        newBundleID_.clear();
    changed.emit();
}

void ExclusionListView::addRunning(const std::string& bundleID) {
    if (bundleID.empty() || contains(bundleID))
        return;
    append(bundleID);
    changed.emit();
}

void ExclusionListView::remove(const std::string& bundleID) {
    save([&](std::vector<std::string>& list) { std::erase(list, bundleID); });
    changed.emit();
}

bool ExclusionListView::contains(std::string_view bundleID) const {
    return std::ranges::find(excludedBundleIDs_, bundleID) != excludedBundleIDs_.end();
}

void ExclusionListView::append(std::string bundleID) {
    save([&](std::vector<std::string>& list) {
        if (std::ranges::find(list, bundleID) == list.end())
            list.push_back(std::move(bundleID));
    });
}

void ExclusionListView::save(const std::function<void(std::vector<std::string>&)>& edit) {
    static_cast<void>(
        settingsStore_.change([&](AppSettings& settings) { edit(settings.excludedBundleIDs); }));
    // Saved or not, the list is what the file holds; while it cannot be read, the list stays as it was.
    if (const auto settings = settingsStore_.load())
        excludedBundleIDs_ = settings->excludedBundleIDs;
}

std::vector<ListedApplication> AppsPane::excludedApplications() {
    const auto windows = windowProvider_.currentWindows();
    std::vector<ListedApplication> applications;
    for (const std::string& identifier : exclusions.excludedBundleIDs()) {
        const ApplicationIdentity installed = catalog_.installedApplication(identifier);
        const auto window = std::ranges::find(windows, identifier, &WindowInfo::bundleIdentifier);
        const std::string& otherName = window == windows.end() ? identifier : window->appName;
        applications.push_back({identifier, installed.name.value_or(otherName), installed.iconName});
    }
    return applications;
}

std::vector<ListedApplication> AppsPane::openApplications() {
    const auto& excluded = exclusions.excludedBundleIDs();
    std::vector<ListedApplication> applications;
    for (const WindowInfo& window : windowProvider_.currentWindows()) {
        if (!window.bundleIdentifier || window.ownerPID == ownProcess_)
            continue;
        const std::string& identifier = *window.bundleIdentifier;
        if (std::ranges::find(excluded, identifier) == excluded.end() &&
            std::ranges::find(applications, identifier, &ListedApplication::bundleIdentifier) ==
                applications.end())
            applications.push_back(
                {identifier, window.appName, catalog_.installedApplication(identifier).iconName});
    }
    return applications;
}

} // namespace tavrin
