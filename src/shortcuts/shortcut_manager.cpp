#include "shortcuts/shortcut_manager.h"

#include <algorithm>

namespace tavrin {
namespace {

std::optional<KeyCombo> accepted(std::optional<KeyCombo> combo) {
    return combo && combo->hasControl() ? combo : std::nullopt;
}

} // namespace

ShortcutManager::ShortcutManager(SettingsStore& settingsStore, KeyMonitors& keyMonitors, WallClock& clock)
    : settingsStore_(settingsStore), keyMonitors_(keyMonitors), clock_(clock) {
    const auto settings = settingsStore_.load();
    if (!settings)
        return;
    autoDetectShortcut.set(accepted(settings->autoDetectShortcut));
    std::map<Uuid, KeyCombo> kept;
    for (const auto& [text, combo] : settings->layoutShortcuts)
        if (const auto layoutID = Uuid::parse(text); layoutID && combo.hasControl())
            kept[*layoutID] = combo;
    layoutShortcuts.set(kept);
    if (autoDetectShortcut.value() != settings->autoDetectShortcut ||
        kept.size() < settings->layoutShortcuts.size())
        persist(SettingsStore::Unreadable::refuse);
}

ShortcutManager::~ShortcutManager() {
    stop();
}

void ShortcutManager::start() {
    if (localMonitor_)
        return;
    localMonitor_ = keyMonitors_.addLocalMonitor([this](const KeyEvent& event) { return handle(event); });
    refusalObserver_ =
        keyMonitors_.observeRefusedKeys([this] { refusedShortcuts.set(keyMonitors_.refusedKeys()); });
    watch();
}

void ShortcutManager::stop() {
    localMonitor_.release();
    refusalObserver_.release();
    watch();
}

void ShortcutManager::watch() {
    std::vector<KeyCombo> combos;
    const auto add = [&](const KeyCombo& combo) {
        if (std::ranges::find(combos, combo) == combos.end())
            combos.push_back(combo);
    };
    if (localMonitor_ && pauses_ == 0) {
        if (autoDetectShortcut.value())
            add(*autoDetectShortcut.value());
        for (const auto& [layoutID, combo] : layoutShortcuts.value())
            add(combo);
    }
    if (combos == watched_)
        return;
    watched_ = combos;
    keyMonitors_.watch(std::move(combos), [this](const KeyEvent& event) { handle(event); });
    refusedShortcuts.set(watched_.empty() ? std::vector<RefusedKey>{} : keyMonitors_.refusedKeys());
}

void ShortcutManager::setAutoDetectShortcut(std::optional<KeyCombo> combo) {
    armSuppression(accepted(combo));
    autoDetectShortcut.set(accepted(combo));
    watch();
    persist(SettingsStore::Unreadable::setAside);
}

void ShortcutManager::setLayoutShortcut(std::optional<KeyCombo> combo, const Uuid& layoutID) {
    auto shortcuts = layoutShortcuts.value();
    if (const auto kept = accepted(combo))
        shortcuts[layoutID] = *kept;
    else
        shortcuts.erase(layoutID);
    armSuppression(accepted(combo));
    layoutShortcuts.set(std::move(shortcuts));
    watch();
    persist(SettingsStore::Unreadable::setAside);
}

void ShortcutManager::removeLayoutShortcut(const Uuid& layoutID) {
    setLayoutShortcut(std::nullopt, layoutID);
}

void ShortcutManager::pruneLayoutShortcuts(const std::vector<Uuid>& layoutIDs) {
    auto shortcuts = layoutShortcuts.value();
    std::erase_if(shortcuts, [&](const auto& shortcut) {
        return std::ranges::find(layoutIDs, shortcut.first) == layoutIDs.end();
    });
    layoutShortcuts.set(std::move(shortcuts));
    watch();
    persist(SettingsStore::Unreadable::refuse);
}

Token ShortcutManager::pause() {
    ++pauses_;
    watch();
    return Token([weak = std::weak_ptr(self_)] {
        const auto self = weak.lock();
        if (self && --(*self)->pauses_ == 0)
            (*self)->watch();
    });
}

bool ShortcutManager::handle(const KeyEvent& event) {
    if (pauses_ > 0)
        return false;
    const auto now = clock_.instant();
    if (suppressionExpiry_ && now > *suppressionExpiry_)
        armSuppression(std::nullopt);
    if (suppressedRecordedCombo_ && suppressedRecordedCombo_->matches(event)) {
        armSuppression(std::nullopt);
        return true;
    }
    if (autoDetectShortcut.value() && autoDetectShortcut.value()->matches(event)) {
        if (onAutoDetect)
            onAutoDetect();
        return true;
    }
    for (const auto& [layoutID, combo] : layoutShortcuts.value()) {
        if (!combo.matches(event))
            continue;
        // The callback may change the shortcuts.
        const Uuid restored = layoutID;
        if (onLayoutRestore)
            onLayoutRestore(restored);
        return true;
    }
    return false;
}

void ShortcutManager::armSuppression(std::optional<KeyCombo> combo) {
    suppressedRecordedCombo_ = combo;
    suppressionExpiry_.reset();
    if (combo)
        suppressionExpiry_ =
            clock_.instant() +
            std::chrono::duration_cast<std::chrono::system_clock::duration>(suppressionDuration);
}

void ShortcutManager::persist(SettingsStore::Unreadable unreadable) {
    const auto store = [this](AppSettings& settings) {
        settings.autoDetectShortcut = autoDetectShortcut.value();
        settings.layoutShortcuts.clear();
        for (const auto& [layoutID, combo] : layoutShortcuts.value())
            settings.layoutShortcuts[layoutID.text()] = combo;
    };
    // What could not be saved still holds until the program ends.
    static_cast<void>(settingsStore_.change(store, unreadable));
}

} // namespace tavrin
