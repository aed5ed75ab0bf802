#include "ui/qt/badge.h"

#include "ui/qt/settings_style.h"

#include <QPainter>

namespace tavrin {

Badge::Badge(const QString& text, Ground ground) : QLabel(text), ground_(ground) {
    setTextFormat(Qt::PlainText);
    setContentsMargins(8, 2, 8, 2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Badge::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
    painter.setBrush(ground_ == Ground::plain ? badgeColor(palette())
                                              : mixedColor(groupColor(palette()), accent, 0.28));
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    QLabel::paintEvent(event);
}

} // namespace tavrin
