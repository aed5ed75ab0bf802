#include "ui/qt/fold_row.h"

#include "ui/qt/return_key.h"
#include "ui/qt/settings_group.h"
#include "ui/qt/settings_style.h"
#include "ui/qt/symbol_icon.h"

#include <QPainter>

namespace tavrin {

FoldRow::FoldRow(const QString& text) : QPushButton(text) {
    setExpanded(false);
}

void FoldRow::setExpanded(bool isExpanded) {
    isExpanded_ = isExpanded;
    setAccessibleDescription(isExpanded ? QStringLiteral("expanded") : QStringLiteral("collapsed"));
    update();
}

QSize FoldRow::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(text()) + 2 * rowMargin + 2 * metrics.height(),
            qRound(metrics.height() * 2.6)};
}

void FoldRow::keyPressEvent(QKeyEvent* event) {
    if (isReturnKey(*event))
        click();
    else
        QPushButton::keyPressEvent(event);
}

void FoldRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
    painter.setPen(palette().color(QPalette::Active, QPalette::WindowText));
    painter.drawText(rect().adjusted(rowMargin, 0, -rowMargin, 0),
                     Qt::AlignVCenter | (isLeftToRight ? Qt::AlignLeft : Qt::AlignRight), text());

    painter.save();
    const double side = fontMetrics().height() * 0.3;
    painter.translate(isLeftToRight ? width() - rowMargin - side : rowMargin + side, height() / 2.0);
    painter.rotate(isExpanded_ ? 90 : isLeftToRight ? 0 : 180);
    painter.setPen(QPen(secondaryTextColor(palette()), 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({{-side / 2, -side}, {side / 2, 0}, {-side / 2, side}}));
    painter.restore();
    if (hasFocus())
        drawFocusRing(painter, QRectF(rect()), groupRadius - 1, palette());
}

} // namespace tavrin
