#pragma once

#include <QCheckBox>

namespace tavrin {

/// A check box drawn as a switch; its text is the label beside it.
class SwitchControl final : public QCheckBox {
public:
    explicit SwitchControl(const QString& accessibleName, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tavrin
