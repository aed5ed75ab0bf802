#pragma once

#include "display/monitor_profile_matcher.h"
#include "ports/services.h"
#include "storage/profile_store.h"
#include "storage/settings_store.h"

#include <expected>
#include <string>
#include <string_view>
#include <variant>

namespace tavrin {

/// Why a capture is refused. The interface words these.
enum class CaptureError { emptyLayoutName, nameTooLong, noWindowsFound, noProfileMatched };

/// Turns the windows that are open now into a saved layout.
class CaptureService {
public:
    static constexpr std::size_t maximumNameLength = 50; ///< characters as a person counts them

    using Error = std::variant<CaptureError, StoreError>;

    struct Collaborators {
        WindowListProviding& windowProvider;
        AXWindowSnapshotProviding* axWindowProvider; ///< null: entries carry only what the window list gives
        ProfileStore& profileStore;
        SettingsStore& settingsStore;
        DisplaySnapshotProviding& displaySnapshotProvider;
        WallClock& clock;
    };

    /// `ownProcess`: this program, whose windows are never part of a layout.
    CaptureService(Collaborators collaborators, ProcessID ownProcess)
        : collaborators_(collaborators), ownProcess_(ownProcess) {}

    /// The name as it would be stored: trimmed, not empty, at most `maximumNameLength` characters.
    static std::expected<std::string, CaptureError> validatedName(std::string_view name);

    /// The profile that is exactly the connected setup, or a new one with the default name.
    std::expected<Uuid, Error> resolveProfileID();

    /// Saves the windows on screen, without those of excluded applications, as a layout of that profile. A
    /// layout of the same name, ignoring case, is replaced and keeps its id, its name on disk and
    /// its date of creation. Nothing is written when it fails.
    std::expected<SavedLayout, Error> capture(std::string_view name, SavedLayoutKind kind,
                                              const Uuid& profileID);

private:
    std::vector<SavedLayoutEntry> entries(const std::vector<WindowInfo>& windows, SavedLayoutKind kind,
                                          const DisplaySnapshotCollection& displays);

    Collaborators collaborators_;
    ProcessID ownProcess_;
    MonitorProfileMatcher matcher_;
};

} // namespace tavrin
