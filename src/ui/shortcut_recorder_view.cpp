#include "ui/shortcut_recorder_view.h"

namespace tavrin {

void ShortcutRecorderView::startRecording() {
    if (recorder_.isRecording())
        return;
    recorder_.startRecording();
    pause_ = shortcutManager_.pause();
    monitor_ = keyMonitors_.addLocalMonitor([this](const KeyEvent& event) { return handle(event); });
    changed.emit();
}

void ShortcutRecorderView::cancelRecording() {
    if (!recorder_.isRecording())
        return;
    recorder_.cancelRecording();
    stopListening();
    changed.emit();
}

void ShortcutRecorderView::clear() {
    recorder_.clear();
    changed.emit();
}

void ShortcutRecorderView::setCombo(std::optional<KeyCombo> combo) {
    if (recorder_.combo() == combo)
        return;
    recorder_.setCombo(combo);
    changed.emit();
}

bool ShortcutRecorderView::handle(const KeyEvent& event) {
    const bool isConsumed = recorder_.handle(event);
    if (!recorder_.isRecording())
        stopListening();
    if (isConsumed)
        changed.emit();
    return isConsumed;
}

void ShortcutRecorderView::stopListening() {
    monitor_.release();
    pause_.release();
}

} // namespace tavrin
