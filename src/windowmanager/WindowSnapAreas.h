#pragma once

#include "core/KeyboardShortcut.h"
#include "core/Rect.h"
#include "core/WindowArea.h"
#include "core/ZoneNumber.h"

#include <optional>
#include <vector>

namespace velmora {

// Screen shapes, from the aspect ratio of the usable rectangle; each zone says on which it is offered.
enum class ScreenKind { vertical, laptop, wide, ultrawide, superUltrawide };

ScreenKind screenKind(double usableWidth, double usableHeight);
bool isAvailableOn(const WindowArea& area, ScreenKind kind);

// The gap between snapped windows and the screen edges, in points, for a usable rectangle.
double snapGap(const Rect& usable, double spacing);

// The zones bound to a pressed chord, in the user's order.
std::vector<WindowArea> zonesForChord(const std::vector<WindowArea>& areas, const KeyboardShortcut& chord);

// A zone's rectangle for snapping: unit coordinates, except that a width or height written as a
// number above 1 is a size in points (the window is then centred).
std::optional<UnitRect> zoneRect(const WindowArea& area);

// The zones of a chord offered on a screen, as rectangles, with the one to use next: the zone after
// the one the window already sits in (within 0.01), wrapping; the first when it sits in none. gap is
// the screen's gap, so that a window this program placed in a zone is recognised there.
struct ZoneChoice {
    std::vector<UnitRect> candidates;
    int index = 0;
};
std::optional<ZoneChoice> chooseZone(const std::vector<WindowArea>& zones, const Rect& usable,
                                     const std::optional<Rect>& windowFrame, double gap = 0);

// The cycle rule alone: the index after the candidate the window sits in, 0 when it sits in none. A
// window sits in a zone when each edge is within 0.01 (of the usable size) of the zone's raw
// rectangle, or of the frame the zone is placed at with the gap: whole points and gaps may put a
// snapped window just beyond 0.01 of the raw rectangle (7 points of 900 on one side, 9 on the other).
int cycleIndex(const std::vector<UnitRect>& candidates, const Rect& usable,
               const std::optional<Rect>& windowFrame, double gap = 0);

// The frame (top-left space) of a unit rectangle in a usable rectangle: a full gap against the screen
// edges and half a gap on each side between zones that meet.
Rect zoneFrame(const UnitRect& zone, const Rect& usable, double gap);

} // namespace velmora
