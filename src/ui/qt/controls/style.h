#pragma once

#include <QColor>
#include <QPalette>

class QFontMetrics;
class QRect;
class QPainter;
class QRectF;
class QWidget;

namespace tavrin {

/// A control that is never squeezed below the size it asks for.
template <class Control>
class KeepsItsSize : public Control {
public:
    using Control::Control;
    QSize minimumSizeHint() const final { return this->sizeHint(); }
};

/// Colours of the settings window, all made from the palette of the desktop, so that they fit light and
/// dark ones alike.

/// `share` of `b` (0 to 1) in `a`.
QColor mixedColor(const QColor& a, const QColor& b, double share);

/// The contrast of two colours, from 1 (none) to 21.
double contrast(const QColor& a, const QColor& b);

/// `color`, moved towards black or white as far as needed for that contrast with `ground`.
QColor withContrast(const QColor& color, const QColor& ground, double least);

inline constexpr double textContrast = 4.5;
inline constexpr double shapeContrast = 3;

/// The desktop's accent as a ground, and what is written on it.
QColor accentColor(const QPalette& palette);
QColor accentTextColor(const QPalette& palette);
/// The accent as a line or shape on the ground of rows or of the window.
QColor accentLineColor(const QPalette& palette);
/// The border of a field and the track of a switch that is off.
QColor shapeColor(const QPalette& palette);

/// The ground of grouped rows, a little apart from the window's.
QColor groupColor(const QPalette& palette);
/// Lines around and between rows.
QColor lineColor(const QPalette& palette);
/// The ground of small marks beside a name.
QColor badgeColor(const QPalette& palette);

/// Colours for texts and symbols that stand out from ordinary text on a ground like `palette`'s window.
QColor secondaryTextColor(const QPalette& palette);
QColor warningColor(const QPalette& palette);

/// Buttons, fields and pickers look alike on every desktop: flat, rounded, one line high.
inline constexpr double controlRadius = 6;
int controlHeight(const QFontMetrics& metrics);

/// The style sheet of a vertical scroll bar without arrows and trough.
inline constexpr int scrollBarWidth = 12;
QString scrollBarStyle(const QPalette& palette);

/// The ground of a button or picker; `isDown` while it is pressed or its menu is open.
void drawControlGround(QPainter& painter, const QWidget& control, bool isDown);
/// The same in `ground`, for a button that stands out.
void drawControlGround(QPainter& painter, const QWidget& control, bool isDown, const QColor& ground);
/// The ground of a field that takes input.
void drawFieldGround(QPainter& painter, const QWidget& field, const QColor& ground);
/// The text of a control, greyed when it cannot be used.
QColor controlTextColor(const QWidget& control);

/// One line of text in its own direction of writing. `alignment` counts from the start of a line in
/// `direction`.
void drawTextLine(QPainter& painter, const QRect& space, Qt::LayoutDirection direction,
                  Qt::Alignment alignment, const QString& text);

/// The ring around a control that has the keyboard's focus.
void drawFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette);

} // namespace tavrin
