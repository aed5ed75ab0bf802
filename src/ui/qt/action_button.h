#pragma once

#include <QPushButton>

class QHBoxLayout;

namespace tavrin {

/// A push button with a text. Return presses it, as Space does.
class ActionButton final : public QPushButton {
public:
    enum class Role { ordinary, suggested, destructive };

    explicit ActionButton(const QString& text, Role role = Role::ordinary);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Role role_;
};

/// The two buttons of a question at the end of a line, in the order that the desktop is used to.
QHBoxLayout* makeAnswerLine(QPushButton* accept, QPushButton* cancel);

} // namespace tavrin
