#pragma once

#include "ui/layouts_pane.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QPushButton;

namespace tavrin {

/// A question in front of a window's content, which cannot be used until it is answered. It is part of that
/// window and none of its own, so no window manager decorates, loses or stacks it.
class QuestionSheet final : public QWidget {
public:
    /// Covers `window` at once, with the focus on the harmless answer. Disappears when answered.
    QuestionSheet(QWidget& window, const DeletionQuestion& question, std::function<void()> confirmed);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void answer(bool isConfirmed);

    std::function<void()> confirmed_;
    QPointer<QWidget> formerFocus_;
    QPushButton* cancel_;
    QPushButton* confirm_;
};

} // namespace tavrin
