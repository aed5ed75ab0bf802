#include "capture/capture_service.h"

#include "base/text.h"
#include "placement/window_placement.h"

#include <algorithm>
#include <map>

namespace tavrin {
namespace {

bool isSameApplication(const WindowInfo& window, const AXWindowSnapshot& snapshot) {
    if (window.bundleIdentifier && snapshot.bundleIdentifier)
        return window.bundleIdentifier == snapshot.bundleIdentifier;
    return window.appName == snapshot.appName;
}

/// The description that its application gives of a listed window: the only one of the application, else
/// the only one with the window's title, else the one that is clearly nearest; null if none.
/// `foldedTitles` are those of the snapshots.
const AXWindowSnapshot* snapshotOf(const WindowInfo& window, const std::vector<AXWindowSnapshot>& snapshots,
                                   const std::vector<std::string>& foldedTitles) {
    std::vector<const AXWindowSnapshot*> candidates;
    for (const AXWindowSnapshot& snapshot : snapshots)
        if (isSameApplication(window, snapshot))
            candidates.push_back(&snapshot);
    if (candidates.empty())
        return nullptr;
    if (candidates.size() == 1)
        return candidates.front();
    if (const std::string title = foldedTitle(window.title); !title.empty()) {
        const auto hasTitle = [&](const auto* candidate) {
            return foldedTitles[static_cast<std::size_t>(candidate - snapshots.data())] == title;
        };
        if (std::ranges::count_if(candidates, hasTitle) == 1)
            return *std::ranges::find_if(candidates, hasTitle);
    }
    const auto nearest =
        nearestFrame(candidates, window.frame, [](const auto* candidate) { return candidate->frame; });
    return nearest && nearest->isClear ? candidates[nearest->position] : nullptr;
}

std::optional<std::string> windowTitle(const WindowInfo& window, const AXWindowSnapshot* snapshot) {
    for (const std::string& title : {trimmed(snapshot ? snapshot->title : ""), trimmed(window.title)})
        if (!title.empty())
            return title;
    return std::nullopt;
}

std::vector<SavedDisplay> savedDisplays(const DisplaySnapshotCollection& displays) {
    std::vector<SavedDisplay> saved;
    for (const DisplaySnapshot& display : displays.displays)
        saved.push_back({display.id(), display.visibleFrame, display.isInternal});
    return saved;
}

} // namespace

std::expected<std::string, CaptureError> CaptureService::validatedName(std::string_view name) {
    std::string trimmedName = trimmed(name);
    if (trimmedName.empty())
        return std::unexpected(CaptureError::emptyLayoutName);
    if (characterCount(trimmedName) > maximumNameLength)
        return std::unexpected(CaptureError::nameTooLong);
    return trimmedName;
}

std::expected<Uuid, CaptureService::Error> CaptureService::resolveProfileID() {
    ProfileStore& store = collaborators_.profileStore;
    auto profiles = store.loadProfiles();
    if (!profiles)
        return std::unexpected(profiles.error());
    const DisplaySnapshotCollection displays = collaborators_.displaySnapshotProvider.currentSnapshot();
    const MatchResult verdict = matcher_.match(displays, *profiles);
    if (const auto* exact = std::get_if<match::Exact>(&verdict))
        return exact->profile.id;

    const auto created =
        store.createProfile(defaultProfileName(displays), matcher_.makeFingerprint(displays));
    if (!created)
        return std::unexpected(created.error());
    profiles = store.loadProfiles();
    if (!profiles)
        return std::unexpected(profiles.error());
    // Another copy of the program may have added or removed setups meanwhile.
    if (std::ranges::find(*profiles, created->id, &MonitorProfile::id) == profiles->end())
        return std::unexpected(CaptureError::noProfileMatched);
    return created->id;
}

std::expected<SavedLayout, CaptureService::Error>
CaptureService::capture(std::string_view name, SavedLayoutKind kind, const Uuid& profileID) {
    const auto layoutName = validatedName(name);
    if (!layoutName)
        return std::unexpected(layoutName.error());
    std::vector<WindowInfo> windows = collaborators_.windowProvider.currentWindows();
    std::erase_if(windows, [&](const WindowInfo& window) { return window.ownerPID == ownProcess_; });
    if (windows.empty())
        return std::unexpected(CaptureError::noWindowsFound);
    const auto settings = collaborators_.settingsStore.load();
    if (!settings)
        return std::unexpected(settings.error());
    std::erase_if(windows, [&](const WindowInfo& window) {
        return window.bundleIdentifier &&
               std::ranges::find(settings->excludedBundleIDs, *window.bundleIdentifier) !=
                   settings->excludedBundleIDs.end();
    });
    const DisplaySnapshotCollection displays = collaborators_.displaySnapshotProvider.currentSnapshot();
    const auto setups = collaborators_.profileStore.load();
    if (!setups)
        return std::unexpected(setups.error());
    auto existing = setups->layoutsOf(profileID);
    const auto sameName = std::ranges::find(
        existing, lowercased(*layoutName), [](const SavedLayout& layout) { return lowercased(layout.name); });
    const bool replaces = sameName != existing.end();

    const Timestamp now = collaborators_.clock.now();
    const SavedLayout layout{.id = replaces ? sameName->id : Uuid::random(),
                             .profileID = profileID,
                             .name = *layoutName,
                             .kind = kind,
                             .entries = entries(windows, kind, displays),
                             .savedDisplays = savedDisplays(displays),
                             .createdAt = replaces ? sameName->createdAt : now,
                             .updatedAt = now};
    const auto written = replaces ? collaborators_.profileStore.replaceLayout(layout.id, kind, layout.entries,
                                                                              layout.savedDisplays)
                                  : collaborators_.profileStore.saveLayout(layout);
    if (!written)
        return std::unexpected(written.error());
    return layout;
}

std::vector<SavedLayoutEntry> CaptureService::entries(const std::vector<WindowInfo>& windows,
                                                      SavedLayoutKind kind,
                                                      const DisplaySnapshotCollection& displays) {
    const bool isAppSpecific = kind == SavedLayoutKind::appSpecific;
    const auto snapshots = isAppSpecific && collaborators_.axWindowProvider
                               ? collaborators_.axWindowProvider->currentSnapshots()
                               : std::vector<AXWindowSnapshot>{};
    std::vector<std::string> foldedTitles;
    for (const AXWindowSnapshot& snapshot : snapshots)
        foldedTitles.push_back(foldedTitle(snapshot.title));
    const auto places = placementInputs(displays);
    std::map<std::string, std::int64_t> slotCounts;
    std::vector<SavedLayoutEntry> entries;
    for (const WindowInfo& window : windows) {
        SavedLayoutEntry entry{.id = Uuid::random(),
                               .bundleIdentifier = window.bundleIdentifier,
                               .frame = window.frame,
                               .slotIndex = slotCounts[window.bundleIdentifier.value_or(window.appName)]++};
        if (isAppSpecific) {
            const AXWindowSnapshot* snapshot = snapshotOf(window, snapshots, foldedTitles);
            entry.appName = window.appName;
            entry.windowTitle = windowTitle(window, snapshot);
            entry.windowRole = snapshot ? snapshot->role : std::nullopt;
            entry.windowSubrole = snapshot ? snapshot->subrole : std::nullopt;
        }
        if (const auto placement = WindowPlacementNormalizer{}.normalize(window.frame, places)) {
            entry.displayIdentifier = placement->displayIdentifier;
            entry.normalizedFrame = placement->normalizedFrame;
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

} // namespace tavrin
