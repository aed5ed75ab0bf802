#pragma once

#include "records/key_combo.h"

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// The control that records one shortcut, without its drawing.
class ShortcutRecorder {
public:
    /// `combo` is the shortcut as it is now; `onChange` gets every new value (absent when cleared);
    /// `validate` returns why a combo is refused, and may be empty.
    ShortcutRecorder(std::optional<KeyCombo> combo, std::function<void(std::optional<KeyCombo>)> onChange,
                     std::function<std::optional<std::string>(const KeyCombo&)> validate);

    const std::optional<KeyCombo>& combo() const { return combo_; }
    /// The shortcut was changed elsewhere.
    void setCombo(std::optional<KeyCombo> combo) { combo_ = combo; }
    bool isRecording() const { return isRecording_; }
    /// Why the last press was refused; absent when it was not.
    const std::optional<std::string>& validationMessage() const { return validationMessage_; }

    /// "Press shortcut…" while recording, else the combo, else "Click to set".
    std::string text() const;

    void startRecording();
    void cancelRecording();

    /// One key press while recording: Escape cancels, a bare key is passed on (false), and a combo is
    /// taken or refused with a message.
    bool handle(const KeyEvent& event);

    void clear();

private:
    void capture(const KeyCombo& combo);
    void tellChange();

    std::optional<KeyCombo> combo_;
    std::function<void(std::optional<KeyCombo>)> onChange_;
    std::function<std::optional<std::string>(const KeyCombo&)> validate_;
    bool isRecording_ = false;
    std::optional<std::string> validationMessage_;
};

} // namespace tavrin
