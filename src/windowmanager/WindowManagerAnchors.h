#pragma once

#include "core/Rect.h"
#include "core/UnitRect.h"
#include "core/WindowArea.h"
#include "core/WindowManagerPreferences.h"
#include "windowmanager/WindowManagerModel.h"

#include <QtGlobal>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// Where a dragged window snaps: a point on the border of the unit screen that stands for one zone,
// with a capture radius in unit coordinates. Zones whose anchors share a point compete by radius.
struct Anchor {
    UnitRect rect;
    Point point;
    float radius = 0.15f;
    // The zone itself, so that a hit names it even after the preferences moved on.
    WindowArea area;
};

// The anchors sharing one point, largest radius first. key is the point as text ("0.0:0.5").
struct AnchorGroup {
    std::string key;
    Point point;
    std::vector<Anchor> anchors;
};

// The anchor groups of one screen size, in the order their points first appear in the zone list.
// created is when they were built, in milliseconds since 1970; updated is the preferences' stamp they
// were built from.
struct CachedAnchorGroups {
    qint64 created = 0;
    double updated = 0;
    std::vector<AnchorGroup> anchorGroups;
};

// A number as the cache keys write it: the shortest text that reads back to the same double, with at
// least one decimal ("1440.0", "875.5", "0.3333333333333333"); exponent form outside 1e-4 .. 1e16.
std::string decimalText(double value);
// Two numbers joined by ':', the form of both keys: a usable size "1440.0:875.0", a point "0.0:0.5".
std::string pairKey(double a, double b);

// The anchor point of a zone rectangle on a usable rectangle of width x height, or none when the zone
// touches no edge. An edge is touched within 0.01. Touching one edge gives the middle of the zone
// along it; two adjacent edges (not the opposite ones) give their corner; a strip touching two opposite
// edges and one edge between them lies along the whole of that edge and gets its middle, so a left
// half and a left third share (0, 0.5). A zone touching two opposite edges and no third (a middle
// band) gets the point at its own middle on the first of them (left before right, top before bottom).
// The whole screen
// lies along every edge: the screen's shape chooses a long edge, the top edge's middle when the screen
// is wider than high, the left edge's middle otherwise.
std::optional<Point> anchorPoint(const UnitRect& zone, double width, double height);

// The anchor of a zone on a usable rectangle of width x height, radius 0.15: none when the zone is not
// offered on the screen's kind, when its numbers do not read as unit coordinates, or when it touches
// no edge.
std::optional<Anchor> anchorOfZone(const WindowArea& area, double width, double height);

// The anchors of all zones grouped by point. Within a group the anchor whose rectangle's middle is
// nearest the screen centre comes first (the smaller area on a tie, then the zone order) and the n
// anchors get the radii 0.15, 0.15 - 0.15/n, 0.15 - 2 * 0.15/n, ...
std::vector<AnchorGroup> anchorGroups(const std::vector<WindowArea>& areas, double width, double height);

// The anchor a pointer at unit point p captures, or nullptr. Computed in single precision:
// - inside the central rectangle (0.15, 0.15, 0.7, 0.7) nothing is captured;
// - the group whose point is nearest p, nearer than 1, is the only one considered;
// - an anchor at the middle of an edge (x or y is 0.5) measures the distance to the edge line only,
//   the others the distance to their point; an anchor captures p within its radius, and among those
//   capturing it the smallest radius wins, the first on a tie;
// - with none capturing, the group's first anchor is the target while its point is nearer than 0.4.
// Allocates nothing. The pointer lives as long as the groups it points into.
const Anchor* hitTest(const std::vector<AnchorGroup>& groups, Point p);

// The unit point of a pointer position in a usable rectangle (both top-left space).
Point unitPoint(Point pointer, const Rect& usable);

// What the preview shows and the release places: the zone and its frame with the gap.
SnapTarget snapTargetFor(const Anchor& anchor, const Rect& usable, double gap);

// The anchor groups of every usable size seen, built on first use and rebuilt when the zones changed.
// Main thread only.
class AnchorsCache {
public:
    // The groups for a usable rectangle of width x height. An entry is reused while the preferences'
    // updated stamp is the one it was built from: every zone edit gives the stamp a new value, which
    // also tells a change that a clock comparison would miss (a stamp from a clock that was behind)
    // and keeps a stamp ahead of the clock from rebuilding on every pointer event. now is the time
    // in milliseconds since 1970 that a rebuilt entry records. A size that is not positive has no
    // groups and is not stored. Allocates only when it builds; the reference lives until the next
    // rebuild of that size.
    const CachedAnchorGroups& groups(double width, double height, const WindowManagerPreferences& prefs,
                                     qint64 now);

    std::size_t size() const { return m_groupsByScreenSize.size(); }

private:
    std::map<std::string, CachedAnchorGroups, std::less<>> m_groupsByScreenSize;
};

} // namespace velmora
