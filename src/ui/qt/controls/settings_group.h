#pragma once

#include "ui/qt/controls/labels.h"

#include <QVBoxLayout>
#include <QWidget>

#include <vector>

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
    /// Puts these rows in this order, whatever stood there; the group owns them. Rows that stay keep the
    /// focus and the pointer. Those that are gone are not deleted.
    void setRows(const std::vector<QWidget*>& rows);
    /// Deletes all rows.
    void clear();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* rows_;
    Frame frame_;
};

/// Texts and a control beside them, or one above the other when it is narrow.
class StackingRow : public QWidget {
public:
    /// `control` may be null.
    void fill(QLayout* texts, QWidget* control);

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QBoxLayout* parts_ = nullptr;
    QWidget* control_ = nullptr;
};

/// A row: text (and a smaller one under it) at the start, `control` at the end. The text is the control's
/// label; `control` may be null.
QWidget* makeRow(const QString& title, const QString& subtitle, QWidget* control);
QWidget* makeRow(const QString& title, QLabel* subtitle, QWidget* control);

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
