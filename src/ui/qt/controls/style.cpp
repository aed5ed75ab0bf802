#include "ui/qt/controls/style.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace tavrin {
namespace {

QColor windowColor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window);
}

QColor textColor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::WindowText);
}

/// The ground on which a line or text is hardest to see: rows lie in groups and on the window.
QColor nearerGround(const QColor& color, const QPalette& palette) {
    const QColor group = groupColor(palette);
    return contrast(color, group) < contrast(color, windowColor(palette)) ? group : windowColor(palette);
}

double luminance(const QColor& color) {
    const auto linear = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QString rgba(const QColor& color, double alpha) {
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(qRound(alpha * 255));
}

} // namespace

QColor mixedColor(const QColor& a, const QColor& b, double share) {
    const auto mixed = [share](int from, int to) { return qRound(from + (to - from) * share); };
    return {mixed(a.red(), b.red()), mixed(a.green(), b.green()), mixed(a.blue(), b.blue())};
}

double contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a);
    const double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor withContrast(const QColor& color, const QColor& ground, double least) {
    const QColor end = contrast(Qt::black, ground) > contrast(Qt::white, ground) ? Qt::black : Qt::white;
    for (double share = 0; share < 1; share += 0.05)
        if (const QColor mixed = mixedColor(color, end, share); contrast(mixed, ground) >= least)
            return mixed;
    return end;
}

QColor accentColor(const QPalette& palette) {
    return withContrast(palette.color(QPalette::Active, QPalette::Highlight), accentTextColor(palette),
                        textContrast);
}

QColor accentTextColor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::HighlightedText);
}

QColor accentLineColor(const QPalette& palette) {
    const QColor accent = palette.color(QPalette::Active, QPalette::Highlight);
    return withContrast(accent, nearerGround(accent, palette), shapeContrast);
}

QColor shapeColor(const QPalette& palette) {
    const QColor line = mixedColor(windowColor(palette), textColor(palette), 0.34);
    return withContrast(line, nearerGround(line, palette), shapeContrast);
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
    const QColor text = mixedColor(textColor(palette), windowColor(palette), 0.3);
    return withContrast(text, nearerGround(text, palette), textContrast);
}

QColor warningColor(const QPalette& palette) {
    return withContrast(QColor(0xc6281c), nearerGround(QColor(0xc6281c), palette), textContrast);
}

QString scrollBarStyle(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    return QStringLiteral(
               "QScrollBar:vertical { background: transparent; border: none; width: %1px; margin: 0; }"
               "QScrollBar::handle:vertical { background: %2; border-radius: 3px; margin: 3px; "
               "min-height: 32px; }"
               "QScrollBar::handle:vertical:hover { background: %3; }"
               "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
               "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }")
        .arg(scrollBarWidth)
        .arg(rgba(text, 0.3), rgba(text, 0.5));
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
    painter.setPen(QPen(shapeColor(field.palette()), 1));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(field.rect()).adjusted(0.5, 0.5, -0.5, -0.5), controlRadius,
                            controlRadius);
}

QColor controlTextColor(const QWidget& control) {
    const QPalette& palette = control.palette();
    return control.isEnabled() ? textColor(palette)
                               : mixedColor(groupColor(palette), textColor(palette), 0.45);
}

void drawTextLine(QPainter& painter, const QRect& space, Qt::LayoutDirection direction,
                  Qt::Alignment alignment, const QString& text) {
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(
        space, static_cast<int>(QStyle::visualAlignment(direction, alignment)) | Qt::AlignAbsolute, text);
}

void drawFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(accentLineColor(palette), 2));
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), radius, radius);
    painter.restore();
}

} // namespace tavrin
