#include "windowmanager/WindowPlacement.h"

#include "core/MainThread.h"
#include "platform/Accessibility.h"

#include <algorithm>
#include <cmath>

namespace velmora {

Rect placementTarget(const Rect& T, const Rect& U) {
    double x = std::trunc(T.x), y = std::trunc(T.y);
    const double width = std::min(std::trunc(T.width), U.width);
    const double height = std::min(std::trunc(T.height), U.height);
    if (x + width > U.maxX())
        x -= x + width - U.maxX();
    if (y + height > U.maxY())
        y -= y + height - U.maxY();
    return {x, y, width, height};
}

Point placeWindow(Accessibility& access, quint32 window, Rect T, const Rect& U, double gap) {
    assertMainThread("placeWindow");
    const Rect target = placementTarget(T, U);
    double x = target.x, y = target.y;
    const double width = target.width, height = target.height;

    const auto actual = access.setFrame(window, {x, y, width, height});
    if (!actual)
        return {x, y}; // the window went away meanwhile
    double newX = x, newY = y;
    // The horizontal test leaves room for the gap and the vertical one does not; the asymmetry is
    // deliberate and shared by every platform.
    if (x + actual->width > U.maxX() - gap)
        newX = std::max(x - (actual->width - width), U.minX() + gap);
    if (y + actual->height > U.maxY())
        newY = std::max(y - (actual->height - height), U.minY() + gap);
    if (newX != x || newY != y) {
        access.setPosition(window, {newX, newY});
        x = newX;
        y = newY;
    }
    return {x, y};
}

} // namespace velmora
