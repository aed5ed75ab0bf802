#pragma once

#include "base/observable.h"
#include "base/uuid.h"
#include "ports/key_monitors.h"
#include "ports/runtime.h"
#include "storage/settings_store.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace tavrin {

/// Owns the user's keyboard shortcuts: one that restores the layout of the recognised setup, and one per
/// layout. Every stored combo contains Control. A press that was just recorded is swallowed once, so that
/// recording a shortcut does not also trigger it.
class ShortcutManager {
public:
    static constexpr Seconds suppressionDuration{0.75};

    /// Reads the settings; shortcuts that break a rule are dropped, and then the rest is written back.
    ShortcutManager(SettingsStore& settingsStore, KeyMonitors& keyMonitors, WallClock& clock);
    ~ShortcutManager();
    ShortcutManager(const ShortcutManager&) = delete;
    ShortcutManager& operator=(const ShortcutManager&) = delete;

    Observable<std::optional<KeyCombo>> autoDetectShortcut;
    Observable<std::map<Uuid, KeyCombo>> layoutShortcuts;
    /// Shortcuts that the desktop does not deliver; empty while none are watched.
    Observable<std::vector<RefusedKey>> refusedShortcuts;

    std::function<void()> onAutoDetect;
    std::function<void(const Uuid&)> onLayoutRestore;

    /// Starts listening to key presses; does nothing when it already listens.
    void start();
    void stop();

    /// Stores a combo with Control; anything else clears the shortcut.
    void setAutoDetectShortcut(std::optional<KeyCombo> combo);
    void setLayoutShortcut(std::optional<KeyCombo> combo, const Uuid& layoutID);
    void removeLayoutShortcut(const Uuid& layoutID);

    /// Removes the shortcuts of all layouts but these.
    void pruneLayoutShortcuts(const std::vector<Uuid>& layoutIDs);

    /// Nothing is watched and no press fires while the token is held: a recorder listens.
    Token pause();

    /// One key press. True when it was a shortcut (or the press that recorded one) and is used up.
    bool handle(const KeyEvent& event);

private:
    void armSuppression(std::optional<KeyCombo> combo);
    /// Lets `edit` alter the stored shortcuts and takes over what is stored from then on.
    void change(const std::function<void(AppSettings&)>& edit, SettingsStore::Unreadable unreadable);
    void adopt(const AppSettings& settings);
    /// Tells the desktop the combinations to watch now, when they are others than before.
    void watch();

    SettingsStore& settingsStore_;
    KeyMonitors& keyMonitors_;
    WallClock& clock_;
    std::vector<KeyCombo> watched_;
    Token refusalObserver_;
    Token localMonitor_;
    int pauses_ = 0;
    std::shared_ptr<ShortcutManager*> self_ = std::make_shared<ShortcutManager*>(this);
    std::optional<KeyCombo> suppressedRecordedCombo_;
    std::optional<std::chrono::system_clock::time_point> suppressionExpiry_;
};

} // namespace tavrin
