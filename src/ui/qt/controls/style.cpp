#include "ui/qt/controls/style.h"

#include <QFontMetrics>
#include <QPainter>
#include <QWidget>

namespace tavrin {
namespace {

QColor windowColor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window);
}

QColor textColor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::WindowText);
}

bool isDark(const QPalette& palette) {
    return qGray(palette.color(QPalette::Window).rgb()) < 128;
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

QColor secondaryTextColor(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    const auto mixed = [](int a, int b) { return (a * 7 + b * 3) / 10; };
    return QColor(mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
                  mixed(text.blue(), ground.blue()));
}

QColor warningColor(const QPalette& palette) {
    return isDark(palette) ? QColor(0xff8a80) : QColor(0xb3261e);
}

int controlHeight(const QFontMetrics& metrics) {
    return qRound(metrics.height() * 1.85);
}

void drawControlGround(QPainter& painter, const QWidget& control, bool isDown) {
    QColor ground = textColor(control.palette());
    const bool isHovered = control.isEnabled() && control.underMouse();
    ground.setAlphaF(!control.isEnabled() ? 0.05F : isDown ? 0.22F : isHovered ? 0.15F : 0.1F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(control.rect()), controlRadius, controlRadius);
}

void drawControlGround(QPainter& painter, const QWidget& control, bool isDown, const QColor& ground) {
    if (!control.isEnabled())
        return drawControlGround(painter, control, isDown);
    const bool isHovered = control.underMouse();
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixedColor(ground, textColor(control.palette()), isDown ? 0.2 : isHovered ? 0.1 : 0));
    painter.drawRoundedRect(QRectF(control.rect()), controlRadius, controlRadius);
}

void drawFieldGround(QPainter& painter, const QWidget& field, const QColor& ground) {
    const QColor line = mixedColor(lineColor(field.palette()), textColor(field.palette()), 0.2);
    painter.setPen(QPen(line, 1));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(field.rect()).adjusted(0.5, 0.5, -0.5, -0.5), controlRadius,
                            controlRadius);
}

QColor controlTextColor(const QWidget& control) {
    const QPalette& palette = control.palette();
    return control.isEnabled() ? textColor(palette)
                               : mixedColor(groupColor(palette), textColor(palette), 0.45);
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
