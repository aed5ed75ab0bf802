#pragma once

#include "ui/shortcut_recorder_view.h"

#include <QPushButton>
#include <QWidget>

class QLabel;

namespace tavrin {

class SymbolButton;

/// The field of a recorder: shows the shortcut, and records one from a click on. A button at its end clears
/// it.
class RecorderField final : public QPushButton {
public:
    RecorderField(ShortcutRecorderView& view, SymbolButton* clearButton);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    ShortcutRecorderView& view_;
    SymbolButton* clearButton_;
};

/// A row with a title, the field that records its shortcut, and the reason of the last refusal beneath.
class ShortcutRecorderRow final : public QWidget {
public:
    /// `view` outlives the row. `owner` names the shortcut to a screen reader.
    ShortcutRecorderRow(const QString& title, const QString& subtitle, const QString& owner,
                        ShortcutRecorderView& view);

private:
    void showState();

    QString owner_;
    ShortcutRecorderView& view_;
    SymbolButton* clearButton_;
    RecorderField* field_;
    QLabel* message_;
    Token subscription_;
};

/// The shortcut in the words printed on keyboards, for example "Ctrl+Alt+R".
QString shortcutInWords(const KeyCombo& combo);

} // namespace tavrin
