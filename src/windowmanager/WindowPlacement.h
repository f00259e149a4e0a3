#pragma once

#include "core/Rect.h"

namespace velmora {

class Accessibility;

// Moves and resizes a window into target T inside the usable rectangle U (both top-left space):
// whole points, kept inside U, position before size; then, if the program kept a larger size than
// asked (a minimum size), the window is moved back by the overshoot, but no nearer to U's left or top
// edge than the gap. Returns the final position.
Point placeWindow(Accessibility& access, quint32 window, Rect T, const Rect& U, double gap);

// The frame placeWindow asks for: T truncated to whole points and kept inside U.
Rect placementTarget(const Rect& T, const Rect& U);

} // namespace velmora
