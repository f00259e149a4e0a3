#include "ui/clipboard/QuickLookPlacement.h"

#include <algorithm>

namespace velmora::QuickLookPlacement {

namespace {

// x kept within [low, high]; low when the range is empty.
int clamp(int x, int low, int high) {
    return std::max(low, std::min(x, high));
}

int leftEdge(int width, const QRect& anchor, const QRect& available) {
    const int right = anchor.right() + 1 + gap;
    const int left = anchor.left() - gap - width;
    if (right + width <= available.right() + 1)
        return right;
    if (left >= available.left())
        return left;
    const int roomRight = available.right() - anchor.right();
    const int roomLeft = anchor.left() - available.left();
    return roomRight >= roomLeft ? available.right() + 1 - width : available.left();
}

} // namespace

QRect frameBeside(QSize size, const QRect& anchor, const QRect& available) {
    const QSize fitted = size.boundedTo(available.size());
    if (anchor.isEmpty()) {
        QRect frame(QPoint(), fitted);
        frame.moveCenter(available.center());
        return frame;
    }
    const int x = leftEdge(fitted.width(), anchor, available);
    const int y = clamp(anchor.top(), available.top(), available.bottom() + 1 - fitted.height());
    return {QPoint(clamp(x, available.left(), available.right() + 1 - fitted.width()), y), fitted};
}

} // namespace velmora::QuickLookPlacement
