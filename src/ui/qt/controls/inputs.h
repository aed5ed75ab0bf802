#pragma once

#include "ui/qt/controls/style.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

namespace tavrin {

/// A check box drawn as a switch; its text is the label beside it.
class SwitchControl final : public KeepsItsSize<QCheckBox> {
public:
    explicit SwitchControl(const QString& accessibleName);

    QSize sizeHint() const override;

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
};

/// A button that shows one of several choices and offers the others. The wheel goes past it to whatever it
/// stands in: nothing is chosen by scrolling over it.
class ChoiceBox final : public KeepsItsSize<QComboBox> {
public:
    /// `name` is announced by a screen reader.
    explicit ChoiceBox(const QString& name);

    QSize sizeHint() const override;
    void showPopup() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

/// A field for one line of text. `name` is announced by a screen reader.
class TextField final : public QLineEdit {
public:
    explicit TextField(const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor ground_;
};

} // namespace tavrin
