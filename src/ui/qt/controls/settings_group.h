#pragma once

#include "ui/qt/controls/labels.h"

#include <QVBoxLayout>
#include <QWidget>

namespace tavrin {

class SwitchControl;

inline constexpr int rowMargin = 14; ///< beside a row's content
inline constexpr double groupRadius = 9;

/// Rows with lines between them, in a rounded frame or as a part of another group.
class SettingsGroup final : public QWidget {
public:
    enum class Frame { rounded, none };

    explicit SettingsGroup(Frame frame = Frame::rounded);

    /// The group owns the row.
    void addRow(QWidget* row);
    /// Deletes all rows.
    void clear();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* rows_;
    Frame frame_;
};

/// A row: text (and a smaller one under it) at the start, `control` at the end. The text is the control's
/// label; `control` may be null.
QWidget* makeRow(const QString& title, const QString& subtitle, QWidget* control);

/// As above with a switch that a click anywhere in the row turns.
QWidget* makeSwitchRow(const QString& title, const QString& subtitle, SwitchControl* control);

/// A row of nothing but a less important text.
QWidget* makeNoteRow(const QString& text);

/// The margins of a row's content.
void setRowMargins(QLayout& layout);

/// A section: its title, an explanation (may be empty) and its content.
void addSection(QVBoxLayout& sections, const QString& title, const QString& explanation, QWidget* content);

/// Makes Tab visit the controls in the order in which the layouts show them.
void followLayoutWithTab(QWidget& root);

} // namespace tavrin
