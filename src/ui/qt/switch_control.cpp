#include "ui/qt/switch_control.h"

#include "ui/qt/return_key.h"
#include "ui/qt/settings_style.h"

#include <QPainter>

namespace tavrin {
namespace {

constexpr int ringWidth = 3; ///< room around the switch for the ring of the focus

} // namespace

SwitchControl::SwitchControl(const QString& accessibleName, QWidget* parent) : QCheckBox(parent) {
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SwitchControl::sizeHint() const {
    const int height = qRound(fontMetrics().height() * 1.15);
    return {qRound(height * 1.85) + 2 * ringWidth, height + 2 * ringWidth};
}

void SwitchControl::keyPressEvent(QKeyEvent* event) {
    if (isReturnKey(*event))
        click();
    else
        QCheckBox::keyPressEvent(event);
}

void SwitchControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor window = palette().color(group, QPalette::Window);
    const QColor text = palette().color(group, QPalette::WindowText);
    const QColor base = palette().color(group, QPalette::Base);

    const QRectF track = QRectF(rect()).adjusted(ringWidth, ringWidth, -ringWidth, -ringWidth);
    const double radius = track.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? palette().color(group, QPalette::Highlight)
                                 : mixedColor(window, text, underMouse() ? 0.42 : 0.34));
    painter.drawRoundedRect(track, radius, radius);

    const double side = track.height() - 4;
    const bool isAtEnd = isChecked() == (layoutDirection() == Qt::LeftToRight);
    const double x = isAtEnd ? track.right() - 2 - side : track.left() + 2;
    const QColor lightest = qGray(base.rgb()) > qGray(text.rgb()) ? base : text;
    painter.setBrush(isChecked() ? palette().color(group, QPalette::HighlightedText) : lightest);
    painter.drawEllipse(QRectF(x, track.top() + 2, side, side));
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), radius + ringWidth, palette());
}

} // namespace tavrin
