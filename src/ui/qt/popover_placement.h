#pragma once

#include <QRect>

namespace tavrin {

/// Where a popover of that size stands: beside `anchor`, away from the edge of the screen that the anchor
/// is nearest to, centred on it, and moved as far as needed to lie inside `available`. Everything in Qt's
/// desktop coordinates; the anchor may lie outside of `available`, as items of a panel do.
QPoint popoverPosition(const QRect& anchor, const QSize& size, const QRect& screen, const QRect& available);

} // namespace tavrin
