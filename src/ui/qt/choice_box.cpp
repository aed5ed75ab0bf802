#include "ui/qt/choice_box.h"

#include "ui/qt/return_key.h"
#include "ui/qt/settings_style.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QWheelEvent>

namespace tavrin {
namespace {

constexpr int characters = 20;
constexpr int sideMargin = 10;

} // namespace

ChoiceBox::ChoiceBox(const QString& name) {
    setAccessibleName(name);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
}

QSize ChoiceBox::sizeHint() const {
    return {fontMetrics().averageCharWidth() * characters + 3 * sideMargin, controlHeight(fontMetrics())};
}

void ChoiceBox::keyPressEvent(QKeyEvent* event) {
    if (isReturnKey(*event))
        showPopup();
    else
        QComboBox::keyPressEvent(event);
}

void ChoiceBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void ChoiceBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawControlGround(painter, *this, view()->isVisible());
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), controlRadius, palette());

    const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
    const double arrowSide = fontMetrics().height() * 0.28;
    const double x = isLeftToRight ? width() - sideMargin - arrowSide : sideMargin + arrowSide;
    const double y = height() / 2.0;
    const QColor ink = controlTextColor(*this);
    painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF(
        {{x - arrowSide, y - arrowSide / 2}, {x, y + arrowSide / 2}, {x + arrowSide, y - arrowSide / 2}}));

    const int arrowSpace = qRound(2 * arrowSide) + sideMargin * 3 / 2;
    const QRect space = rect().adjusted(isLeftToRight ? sideMargin : arrowSpace, 0,
                                        isLeftToRight ? -arrowSpace : -sideMargin, 0);
    painter.setPen(ink);
    painter.drawText(space, Qt::AlignVCenter | (isLeftToRight ? Qt::AlignLeft : Qt::AlignRight),
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, space.width()));
}

} // namespace tavrin
