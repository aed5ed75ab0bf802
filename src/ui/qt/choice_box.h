#pragma once

#include <QComboBox>

namespace tavrin {

/// A button that shows one of several choices and offers the others. The wheel goes past it to whatever it
/// stands in: nothing is chosen by scrolling over it.
class ChoiceBox final : public QComboBox {
public:
    /// `name` is announced by a screen reader.
    explicit ChoiceBox(const QString& name);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace tavrin
