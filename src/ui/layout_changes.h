#pragma once

#include "base/observable.h"
#include "capture/capture_service.h"
#include "shortcuts/shortcut_manager.h"
#include "ui/current_profile_view_model.h"
#include "ui/profile_list_view_model.h"

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// Saves, updates and deletes layouts for the interface, and tells how it went. What overwrites or removes
/// something can be taken back until the next change, or for 20 seconds.
class LayoutChanges {
public:
    static constexpr Seconds noticeDuration{20};

    struct Collaborators {
        CaptureService& captureService;
        ProfileStore& profileStore;
        ShortcutManager& shortcutManager;
        CurrentProfileViewModel& currentProfileViewModel;
        ProfileListViewModel& profileListViewModel;
        Scheduler& scheduler;
    };

    /// What was done last, in words, with what can be done about it now.
    struct Notice {
        enum class Kind { done, failed };
        std::string text;
        Kind kind = Kind::done;
        std::string actionLabel; ///< empty when there is nothing to do
        bool isUndo = false;     ///< the action takes the change back

        bool operator==(const Notice&) const = default;
    };

    explicit LayoutChanges(Collaborators collaborators) : collaborators_(collaborators) {}

    /// Absent while there is nothing to tell.
    Observable<std::optional<Notice>> notice;

    /// Saves the windows that are open now; a layout of that name is replaced.
    void save(std::string_view name, const Uuid& profileID);
    /// Replaces the windows of a layout by those that are open now.
    void update(const Uuid& layoutID);
    /// Shortcuts go with their layouts, layouts with their setup.
    void deleteLayout(const Uuid& layoutID);
    void deleteSetup(const Uuid& profileID);

    /// Tells that a change failed for this reason; the notice before goes.
    void reportFailure(const CaptureService::Error& error);

    /// Does what the notice offers. Without an offer nothing happens.
    void act();
    /// The next action began: the notice of the last one goes, and with it the offer to undo it.
    void dismiss() { tell(std::nullopt, nullptr); }

private:
    struct Before {
        SavedSetups setups;
        std::map<Uuid, KeyCombo> shortcuts;
    };
    std::expected<Before, StoreError> before();
    void tell(std::optional<Notice> told, std::function<void()> action);
    void offerUndo(std::string text, const Uuid& profileID, Before before);
    void offerDefault(const SavedLayout& layout);
    void putBack(const Uuid& profileID, const Before& before);
    void removeShortcutsOfMissingLayouts();
    void reload();

    Collaborators collaborators_;
    std::function<void()> action_;
    Token expiry_;
};

/// That nothing was stored, and why.
std::string failureText(const CaptureService::Error& error);

/// "1 window", "5 windows".
std::string windowCountText(std::size_t count);
/// "1 layout", "5 layouts".
std::string layoutCountText(std::size_t count);

} // namespace tavrin
