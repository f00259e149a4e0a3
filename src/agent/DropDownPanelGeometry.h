#pragma once

#include "core/Rect.h"

namespace velmora {

// Where the drop-down panel goes, in the screen space: 240 points wide, starting 150 points left of
// the status icon's centre (deliberately not half the width), from the bottom of the screen up to the
// panel area. When nothing reserves space at the top of the screen (V's top is S's top) the panel is
// shorter by the height of the icon's window. F: the status icon's window, V: the screen's visible
// frame, S: its full frame.
Rect dropDownPanelFrame(const Rect& F, const Rect& V, const Rect& S);

// The platform keeps panels on their screen: a frame sticking out past a side edge is moved inside.
Rect constrainedToScreen(const Rect& frame, const Rect& S);

} // namespace velmora
