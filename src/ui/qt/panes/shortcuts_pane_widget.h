#pragma once

#include "ui/qt/controls/keyboard_list.h"
#include "ui/qt/controls/settings_group.h"
#include "ui/qt/controls/style.h"
#include "ui/qt/panes/settings_pane_widget.h"
#include "ui/shortcuts_pane.h"
#include "ui/user_interface.h"

#include <QPushButton>
#include <QWidget>

class QLabel;

namespace tavrin {

class SymbolButton;

/// The field of a recorder: shows the shortcut, and records one from a click on. A button at its end clears
/// it.
class RecorderField final : public KeepsItsSize<QPushButton> {
public:
    RecorderField(ShortcutRecorderView& view, SymbolButton* clearButton);

    QSize sizeHint() const override;

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    ShortcutRecorderView& view_;
    SymbolButton* clearButton_;
};

/// A row with a title, the field that records its shortcut, and the reason of the last refusal.
class ShortcutRecorderRow final : public StackingRow {
public:
    /// `view` outlives the row. `owner` names the shortcut to a screen reader.
    ShortcutRecorderRow(const QString& title, const QString& subtitle, const QString& owner,
                        ShortcutRecorderView& view, const ShortcutsPane& pane);

    KeyboardList::Row row();

private:
    void showState();

    QString title_;
    QString owner_;
    QString spoken_; ///< what was last said of the field
    ShortcutRecorderView& view_;
    const ShortcutsPane& pane_;
    SymbolButton* clearButton_;
    RecorderField* field_;
    QLabel* message_;
    Token subscription_;
};

/// The shortcuts pane.
class ShortcutsPaneWidget final : public SettingsPaneWidget {
public:
    explicit ShortcutsPaneWidget(const SettingsCollaborators& collaborators);
    ~ShortcutsPaneWidget() override;

    void appear() override { pane_.appear(); }
    QString description() const override;

private:
    void rebuildGroups();

    ShortcutsPane pane_;
    KeyboardList* list_;
    ShortcutRecorderRow* autoDetectRow_ = nullptr;
    QWidget* autoDetect_ = nullptr;
    QWidget* groups_ = nullptr;
    Token subscription_;
};

} // namespace tavrin
