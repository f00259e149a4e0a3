#pragma once

#include "core/Rect.h"

#include <vector>

namespace velmora {

// Space a dock or panel reserves along one edge of the whole desktop (the root window), limited to a
// range along that edge, as docks announce it. All numbers in the top-left space of the desktop.
struct Strut {
    double left = 0, right = 0, top = 0, bottom = 0;
    double leftStartY = 0, leftEndY = 0, rightStartY = 0, rightEndY = 0;
    double topStartX = 0, topEndX = 0, bottomStartX = 0, bottomEndX = 0;
};

// The part of a monitor (top-left space) that no strut touching it covers. A strut reserves space on
// a monitor only where its band overlaps the monitor: a panel along the top of the left monitor does
// not shrink the right one.
Rect visibleArea(const Rect& monitor, const std::vector<Strut>& struts, double desktopWidth,
                 double desktopHeight);

} // namespace velmora
