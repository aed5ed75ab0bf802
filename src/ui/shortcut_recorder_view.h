#pragma once

#include "base/signal.h"
#include "shortcuts/shortcut_manager.h"
#include "shortcuts/shortcut_recorder.h"

namespace tavrin {

/// A recorder that listens to the keys while it records. Meanwhile no shortcut fires, so that a press that
/// belongs to another shortcut is seen here and refused instead of acting.
class ShortcutRecorderView {
public:
    ShortcutRecorderView(ShortcutRecorder recorder, ShortcutManager& shortcutManager,
                         KeyMonitors& keyMonitors)
        : recorder_(std::move(recorder)), shortcutManager_(shortcutManager), keyMonitors_(keyMonitors) {}

    const ShortcutRecorder& recorder() const { return recorder_; }

    void startRecording();
    /// Escape was pressed or the focus went elsewhere.
    void cancelRecording();
    void clear();
    /// The shortcut was changed elsewhere.
    void setCombo(std::optional<KeyCombo> combo);

    Signal<> changed;

private:
    bool handle(const KeyEvent& event);
    void stopListening();

    ShortcutRecorder recorder_;
    ShortcutManager& shortcutManager_;
    KeyMonitors& keyMonitors_;
    Token pause_;
    Token monitor_;
};

} // namespace tavrin
