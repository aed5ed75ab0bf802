#include "ui/qt/settings_style.h"

#include <QPainter>

namespace tavrin {
namespace {

QColor windowColor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window);
}

QColor textColor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::WindowText);
}

} // namespace

QColor mixedColor(const QColor& a, const QColor& b, double share) {
    const auto mixed = [share](int from, int to) { return qRound(from + (to - from) * share); };
    return {mixed(a.red(), b.red()), mixed(a.green(), b.green()), mixed(a.blue(), b.blue())};
}

QColor groupColor(const QPalette& palette) {
    const QColor window = windowColor(palette);
    const bool isDark = qGray(window.rgb()) < qGray(textColor(palette).rgb());
    return isDark ? mixedColor(window, textColor(palette), 0.06)
                  : mixedColor(window, palette.color(QPalette::Active, QPalette::Base), 0.85);
}

QColor lineColor(const QPalette& palette) {
    return mixedColor(windowColor(palette), textColor(palette), 0.16);
}

QColor badgeColor(const QPalette& palette) {
    return mixedColor(groupColor(palette), textColor(palette), 0.1);
}

void drawFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette.color(QPalette::Active, QPalette::Highlight), 2));
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), radius, radius);
    painter.restore();
}

} // namespace tavrin
