#include "ui/qt/text_field.h"

#include "ui/qt/settings_style.h"

#include <QPainter>

namespace tavrin {

TextField::TextField(const QString& name) : ground_(palette().color(QPalette::Active, QPalette::Base)) {
    setAccessibleName(name);
    setFrame(false);
    setTextMargins(6, 0, 6, 0);
    setMinimumHeight(controlHeight(fontMetrics()));
    QPalette colors = palette();
    // The style would fill the corners as well.
    colors.setColor(QPalette::Base, Qt::transparent);
    // Desktops with a dark palette forget this one.
    colors.setColor(QPalette::PlaceholderText,
                    mixedColor(ground_, palette().color(QPalette::Active, QPalette::Text), 0.62));
    setPalette(colors);
}

void TextField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        drawFieldGround(painter, *this, ground_);
        if (hasFocus())
            drawFocusRing(painter, QRectF(rect()), controlRadius, palette());
    }
    QLineEdit::paintEvent(event);
}

} // namespace tavrin
