#pragma once

#include "ui/qt/controls/style.h"

#include <QPushButton>
#include <QToolButton>

#include <optional>

class QKeyEvent;

namespace tavrin {

/// A push button with a text.
class ActionButton final : public KeepsItsSize<QPushButton> {
public:
    enum class Role { ordinary, suggested, destructive };

    explicit ActionButton(const QString& text, Role role = Role::ordinary);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Role role_;
};

/// The two buttons of a question at the end of a line, in the order that the desktop is used to.
QWidget* makeAnswerLine(QPushButton* accept, QPushButton* cancel);

/// A button with a symbol, or with a symbol and a menu.
class SymbolButton final : public KeepsItsSize<QToolButton> {
public:
    enum class Ground {
        always, ///< stands beside other buttons
        onHover ///< stands in a row or a field
    };

    /// `name` is announced by a screen reader.
    SymbolButton(const QString& symbol, const QString& name, Ground ground,
                 std::optional<QColor> color = std::nullopt);

    void setSymbol(const QString& symbol);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int iconSide() const { return fontMetrics().height() * 5 / 4; }

    Ground ground_;
};

/// A row of a group that folds and unfolds the rows under it.
class FoldRow final : public KeepsItsSize<QPushButton> {
public:
    explicit FoldRow(const QString& text);

    void setExpanded(bool isExpanded);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isExpanded_ = false;
};

/// Lets Return press the control that has the focus, as Space does: a button, a switch, a menu, a picker. For
/// keys that no control of the window used. False when this is no such key or control.
bool pressFocusedControl(const QKeyEvent& event);

} // namespace tavrin
