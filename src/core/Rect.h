#pragma once

#include <QRect>
#include <QRectF>

namespace velmora {

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

// A rectangle with origin and size, used in both coordinate spaces of the system: the window-server
// space (top-left origin, y down) for window frames and the screen space (bottom-left origin, y up)
// for screen frames.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return x; }
    double midX() const { return x + width / 2; }
    double maxX() const { return x + width; }
    double minY() const { return y; }
    double midY() const { return y + height / 2; }
    double maxY() const { return y + height; }
    bool isEmpty() const { return width <= 0 || height <= 0; }

    // Half-open on the far edges, so that two adjacent rectangles never both contain a point.
    bool contains(Point p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }

    // Converts between the two spaces; primaryHeight is the height of the primary screen's frame.
    // The same formula works in both directions.
    Rect flipped(double primaryHeight) const { return {x, primaryHeight - (y + height), width, height}; }

    QRectF toQRectF() const { return {x, y, width, height}; }
    static Rect fromQRect(const QRect& r) {
        return {double(r.x()), double(r.y()), double(r.width()), double(r.height())};
    }

    bool operator==(const Rect&) const = default;
};

} // namespace velmora
