#include "core/Strut.h"

#include <algorithm>

namespace velmora {

namespace {

// Whether [a0, a1] and [b0, b1) overlap.
bool spans(double a0, double a1, double b0, double b1) {
    return a0 < b1 && a1 >= b0;
}

} // namespace

Rect visibleArea(const Rect& monitor, const std::vector<Strut>& struts, double desktopWidth,
                 double desktopHeight) {
    double minX = monitor.minX(), maxX = monitor.maxX(), minY = monitor.minY(), maxY = monitor.maxY();
    for (const auto& s : struts) {
        if (s.left > monitor.minX() && spans(s.leftStartY, s.leftEndY, monitor.minY(), monitor.maxY()))
            minX = std::max(minX, s.left);
        const double rightEdge = desktopWidth - s.right;
        if (s.right > 0 && rightEdge < monitor.maxX() &&
            spans(s.rightStartY, s.rightEndY, monitor.minY(), monitor.maxY()))
            maxX = std::min(maxX, rightEdge);
        if (s.top > monitor.minY() && spans(s.topStartX, s.topEndX, monitor.minX(), monitor.maxX()))
            minY = std::max(minY, s.top);
        const double bottomEdge = desktopHeight - s.bottom;
        if (s.bottom > 0 && bottomEdge < monitor.maxY() &&
            spans(s.bottomStartX, s.bottomEndX, monitor.minX(), monitor.maxX()))
            maxY = std::min(maxY, bottomEdge);
    }
    if (maxX < minX || maxY < minY)
        return monitor; // a strut larger than the monitor is a broken dock; ignore it
    return {minX, minY, maxX - minX, maxY - minY};
}

} // namespace velmora
