#include "ui/qt/popover_placement.h"

#include <algorithm>

namespace tavrin {
namespace {

constexpr int gap = 6;

int inside(int position, int extent, int from, int length) {
    // What does not fit shows its beginning.
    return std::max(from, std::min(position, from + length - extent));
}

} // namespace

QPoint popoverPosition(const QRect& anchor, const QSize& size, const QRect& screen, const QRect& available) {
    const int above = anchor.top() - screen.top();
    const int below = screen.bottom() - anchor.bottom();
    const int left = anchor.left() - screen.left();
    const int right = screen.right() - anchor.right();

    int x = anchor.center().x() - size.width() / 2;
    int y = anchor.center().y() - size.height() / 2;
    if (std::min(above, below) <= std::min(left, right))
        y = above <= below ? anchor.bottom() + 1 + gap : anchor.top() - gap - size.height();
    else
        x = left <= right ? anchor.right() + 1 + gap : anchor.left() - gap - size.width();
    return {inside(x, size.width(), available.left(), available.width()),
            inside(y, size.height(), available.top(), available.height())};
}

} // namespace tavrin
