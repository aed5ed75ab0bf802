#include "shortcuts/shortcut_manager.h"

#include <algorithm>

namespace tavrin {
namespace {

std::optional<KeyCombo> accepted(std::optional<KeyCombo> combo) {
    return combo && combo->hasControl() ? combo : std::nullopt;
}

void dropUnusable(AppSettings& settings) {
    settings.autoDetectShortcut = accepted(settings.autoDetectShortcut);
    std::erase_if(settings.layoutShortcuts, [](const auto& shortcut) {
        return !Uuid::parse(shortcut.first) || !shortcut.second.hasControl();
    });
}

} // namespace

ShortcutManager::ShortcutManager(SettingsStore& settingsStore, KeyMonitors& keyMonitors, WallClock& clock)
    : settingsStore_(settingsStore), keyMonitors_(keyMonitors), clock_(clock) {
    const auto settings = settingsStore_.load();
    if (!settings)
        return;
    adopt(*settings);
    if (autoDetectShortcut.value() != settings->autoDetectShortcut ||
        layoutShortcuts.value().size() < settings->layoutShortcuts.size())
        change(dropUnusable, SettingsStore::Unreadable::refuse);
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
    change([&](AppSettings& settings) { settings.autoDetectShortcut = accepted(combo); },
           SettingsStore::Unreadable::setAside);
}

void ShortcutManager::setLayoutShortcut(std::optional<KeyCombo> combo, const Uuid& layoutID) {
    armSuppression(accepted(combo));
    const auto edit = [&](AppSettings& settings) {
        std::erase_if(settings.layoutShortcuts,
                      [&](const auto& shortcut) { return Uuid::parse(shortcut.first) == layoutID; });
        if (const auto kept = accepted(combo))
            settings.layoutShortcuts[layoutID.text()] = *kept;
    };
    change(edit, SettingsStore::Unreadable::setAside);
}

void ShortcutManager::removeLayoutShortcut(const Uuid& layoutID) {
    setLayoutShortcut(std::nullopt, layoutID);
}

void ShortcutManager::pruneLayoutShortcuts(const std::vector<Uuid>& layoutIDs) {
    const auto edit = [&](AppSettings& settings) {
        std::erase_if(settings.layoutShortcuts, [&](const auto& shortcut) {
            return std::ranges::find(layoutIDs, Uuid::parse(shortcut.first)) == layoutIDs.end();
        });
    };
    change(edit, SettingsStore::Unreadable::refuse);
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

void ShortcutManager::change(const std::function<void(AppSettings&)>& edit,
                             SettingsStore::Unreadable unreadable) {
    // Another copy of the program may have stored shortcuts of its own; they stay.
    const auto stored = settingsStore_.change(edit, SettingsStore::Unreadable::refuse);
    if (stored) {
        adopt(*stored);
    } else {
        // What could not be saved still holds until the program ends.
        AppSettings own{.autoDetectShortcut = autoDetectShortcut.value()};
        for (const auto& [layoutID, combo] : layoutShortcuts.value())
            own.layoutShortcuts[layoutID.text()] = combo;
        edit(own);
        adopt(own);
        const auto replace = [&](AppSettings& settings) {
            settings.autoDetectShortcut = own.autoDetectShortcut;
            settings.layoutShortcuts = own.layoutShortcuts;
        };
        if (unreadable == SettingsStore::Unreadable::setAside &&
            std::holds_alternative<UnreadableFile>(stored.error()))
            static_cast<void>(settingsStore_.change(replace, unreadable));
    }
    watch();
}

void ShortcutManager::adopt(const AppSettings& settings) {
    std::map<Uuid, KeyCombo> kept;
    for (const auto& [text, combo] : settings.layoutShortcuts)
        if (const auto layoutID = Uuid::parse(text); layoutID && combo.hasControl())
            kept[*layoutID] = combo;
    autoDetectShortcut.set(accepted(settings.autoDetectShortcut));
    layoutShortcuts.set(std::move(kept));
}

} // namespace tavrin
