#pragma once

#include "core/Rect.h"

#include <optional>

namespace velmora {

// The space a snapped window leaves free on its screen, for the auto-layout proposal; both rectangles
// in top-left space, usable being the screen's usable rectangle. A window against the top and bottom
// and exactly one of the sides leaves the rest of the width; one against both sides and exactly one of
// the top and bottom leaves the rest of the height. Edges touch within the gap g of the spacing (as
// for zones) and a tolerance of 2 % of the window's longer side. The free space keeps a full gap to
// the screen edges and to the window: the narrowed dimension loses three gaps, the other two. Any
// other window (floating, maximised, in a corner, between two opposite sides only) leaves none.
std::optional<Rect> autoLayoutFreeSpace(const Rect& window, const Rect& usable, double spacing);

} // namespace velmora
