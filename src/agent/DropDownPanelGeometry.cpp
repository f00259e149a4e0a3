#include "agent/DropDownPanelGeometry.h"

#include <algorithm>

namespace velmora {

Rect dropDownPanelFrame(const Rect& F, const Rect& V, const Rect& S) {
    const double height = V.maxY() != S.maxY() ? V.height : V.height - F.height;
    return {F.midX() - 150, 0, 240, height};
}

Rect constrainedToScreen(const Rect& frame, const Rect& S) {
    Rect r = frame;
    r.x = std::clamp(r.x, S.minX(), std::max(S.minX(), S.maxX() - r.width));
    return r;
}

} // namespace velmora
