#include "windowmanager/AutoLayoutFreeSpace.h"

#include "windowmanager/LowLevelHelpers.h"
#include "windowmanager/WindowManagerLog.h"
#include "windowmanager/WindowSnapAreas.h"

#include <algorithm>

namespace velmora {

std::optional<Rect> autoLayoutFreeSpace(const Rect& F, const Rect& U, double spacing) {
    if (F.isEmpty() || U.isEmpty()) {
        qCWarning(lcWindowManager) << "No free space beside a window of" << F.width << "x" << F.height
                                   << "on a usable area of" << U.width << "x" << U.height;
        return std::nullopt;
    }
    const double g = snapGap(U, spacing);
    const double t = std::max(F.width, F.height) * 0.02;
    const Edges e = edgesTouching(F, U, g, t);

    std::optional<Rect> free;
    if (e.top && e.bottom && e.left != e.right)
        free = Rect{(e.left ? F.maxX() : U.minX()) + g, U.minY() + g, U.width - F.width - 3 * g,
                    U.height - 2 * g};
    else if (e.left && e.right && e.top != e.bottom)
        free = Rect{U.minX() + g, (e.top ? F.maxY() : U.minY()) + g, U.width - 2 * g,
                    U.height - F.height - 3 * g};
    // A window nearly as large as the screen, with a large gap, leaves no room worth proposing.
    if (free && free->isEmpty())
        return std::nullopt;
    return free;
}

} // namespace velmora
