#include "shortcuts/shortcut_recorder.h"

#include "base/token.h"

#include <utility>

namespace tavrin {
namespace {

constexpr std::uint16_t escapeKeyCode = 53;

} // namespace

ShortcutRecorder::ShortcutRecorder(std::optional<KeyCombo> combo,
                                   std::function<void(std::optional<KeyCombo>)> onChange,
                                   std::function<std::optional<std::string>(const KeyCombo&)> validate)
    : combo_(combo), onChange_(std::move(onChange)), validate_(std::move(validate)) {}

std::string ShortcutRecorder::text() const {
    if (isRecording_)
        return "Press shortcut…";
    return combo_ ? combo_->displayString() : "Click to set";
}

void ShortcutRecorder::startRecording() {
    isRecording_ = true;
}

void ShortcutRecorder::cancelRecording() {
    isRecording_ = false;
}

bool ShortcutRecorder::handle(const KeyEvent& event) {
    if (!isRecording_)
        return false;
    if (event.keyCode == escapeKeyCode) {
        cancelRecording();
        return true;
    }
    if (event.modifiers() == ModifierSet{})
        return false;
    capture({event.keyCode, event.modifiers()});
    return true;
}

void ShortcutRecorder::clear() {
    combo_.reset();
    validationMessage_.reset();
    tellChange();
}

void ShortcutRecorder::capture(const KeyCombo& combo) {
    if (!combo.hasControl()) {
        validationMessage_ =
            "Use Control in the shortcut so Tavrin does not conflict with app or system commands.";
        return;
    }
    if (auto message = validate_ ? validate_(combo) : std::nullopt) {
        validationMessage_ = std::move(message);
        return;
    }
    combo_ = combo;
    validationMessage_.reset();
    isRecording_ = false;
    tellChange();
}

void ShortcutRecorder::tellChange() {
    callCopy(onChange_, combo_);
}

} // namespace tavrin
