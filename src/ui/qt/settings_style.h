#pragma once

#include <QColor>
#include <QPalette>

class QPainter;
class QRectF;

namespace tavrin {

/// Colours of the settings window, all made from the palette of the desktop, so that they fit light and
/// dark ones alike.

/// `share` of `b` (0 to 1) in `a`.
QColor mixedColor(const QColor& a, const QColor& b, double share);

/// The ground of grouped rows, a little apart from the window's.
QColor groupColor(const QPalette& palette);
/// Lines around and between rows.
QColor lineColor(const QPalette& palette);
/// The ground of small marks beside a name.
QColor badgeColor(const QPalette& palette);

/// The ring around a control that has the keyboard's focus.
void drawFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette);

} // namespace tavrin
