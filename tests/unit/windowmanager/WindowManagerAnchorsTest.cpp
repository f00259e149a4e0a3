// Snap anchors of the zones and the pointer's hit test, with the numbers of a 1440 x 900 screen.
#include "windowmanager/WindowManagerAnchors.h"
#include "core/DefaultValues.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

WindowArea zone(const char* name, const char* x, const char* y, const char* w, const char* h) {
    WindowArea a;
    a.name = name;
    a.x = x;
    a.y = y;
    a.w = w;
    a.h = h;
    a.availableOnMacbookScreen = a.availableOnWideScreen = a.availableOnUltrawideScreen = true;
    a.availableOnSuperUltrawideScreen = a.availableOnVerticalScreen = true;
    return a;
}

// The zone names of a group, in group order.
std::vector<QString> names(const AnchorGroup& group) {
    std::vector<QString> result;
    for (const auto& a : group.anchors)
        result.push_back(a.area.name);
    return result;
}

const AnchorGroup* groupAt(const std::vector<AnchorGroup>& groups, Point p) {
    for (const auto& g : groups)
        if (g.point == p)
            return &g;
    return nullptr;
}

QString hitName(const std::vector<AnchorGroup>& groups, Point p) {
    const Anchor* a = hitTest(groups, p);
    return a ? a->area.name : QString("none");
}

} // namespace

TEST(WindowManagerAnchors, AnchorPointFollowsTheEdgesTheZoneTouches) {
    const auto at = [](UnitRect z, double W = 1440, double H = 900) { return anchorPoint(z, W, H); };
    // Corners: two adjacent edges.
    EXPECT_EQ(at({0, 0, 0.5, 0.5}), (Point{0, 0}));
    EXPECT_EQ(at({0.5, 0, 0.5, 0.5}), (Point{1, 0}));
    EXPECT_EQ(at({0, 0.5, 0.5, 0.5}), (Point{0, 1}));
    EXPECT_EQ(at({0.5, 0.5, 0.5, 0.5}), (Point{1, 1}));
    // One edge: the zone's middle along it.
    EXPECT_EQ(at({0, 0.25, 0.3, 0.25}), (Point{0, 0.375}));
    EXPECT_EQ(at({0.75, 0.5, 0.25, 0.25}), (Point{1, 0.625}));
    EXPECT_EQ(at({0.25, 0, 0.25, 0.3}), (Point{0.375, 0}));
    EXPECT_EQ(at({0.25, 0.75, 0.25, 0.25}), (Point{0.375, 1}));
    // Strips lying along a whole edge: that edge's middle, whatever the strip's width.
    EXPECT_EQ(at({0, 0, 0.5, 1}), (Point{0, 0.5}));
    EXPECT_EQ(at({0, 0, 2.0 / 3, 1}), (Point{0, 0.5}));
    EXPECT_EQ(at({0.5, 0, 0.5, 1}), (Point{1, 0.5}));
    EXPECT_EQ(at({0, 0, 1, 0.5}), (Point{0.5, 0}));
    EXPECT_EQ(at({0, 0.5, 1, 0.5}), (Point{0.5, 1}));
    EXPECT_EQ(at({0, 0, 1, 0.5}, 1080, 1920), (Point{0.5, 0}));
    // The whole screen goes on a long edge.
    EXPECT_EQ(at({0, 0, 1, 1}), (Point{0.5, 0}));
    EXPECT_EQ(at({0, 0, 1, 1}, 1080, 1920), (Point{0, 0.5}));
    EXPECT_EQ(at({0, 0, 1, 1}, 1000, 1000), (Point{0, 0.5}));
    // Touching is within 0.01, not beyond.
    EXPECT_EQ(at({0.01, 0.25, 0.3, 0.25}), (Point{0, 0.375}));
    EXPECT_FALSE(at({0.011, 0.25, 0.3, 0.25}));
    EXPECT_EQ(at({0.2, 0.25, 0.79, 0.25}), (Point{1, 0.375}));
    // A middle column or band touches two opposite edges only.
    EXPECT_EQ(at({1.0 / 3, 0, 1.0 / 3, 1}), (Point{0.5, 0}));
    EXPECT_EQ(at({0, 0.25, 1, 0.25}), (Point{0, 0.375}));
    // A zone in the middle touches nothing.
    EXPECT_FALSE(at({0.25, 0.25, 0.5, 0.5}));
}

TEST(WindowManagerAnchors, ZonesWithoutAnAnchor) {
    EXPECT_FALSE(anchorOfZone(zone("Middle", "1/4", "1/4", "1/2", "1/2"), 1440, 900));
    EXPECT_FALSE(anchorOfZone(zone("Broken", "0", "0", "1/0", "1"), 1440, 900));
    EXPECT_FALSE(anchorOfZone(zone("Points", "0", "0", "800", "1"), 1440, 900)); // a size in points
    EXPECT_FALSE(anchorOfZone(zone("Past the edge", "1", "0", "1/2", "1"), 1440, 900));
    WindowArea portraitOnly = zone("Top", "0", "0", "1", "1/2");
    portraitOnly.availableOnMacbookScreen = false;
    EXPECT_FALSE(anchorOfZone(portraitOnly, 1440, 900));
    const auto anchor = anchorOfZone(portraitOnly, 1080, 1920);
    ASSERT_TRUE(anchor);
    EXPECT_EQ(anchor->rect, (UnitRect{0, 0, 1, 0.5}));
    EXPECT_EQ(anchor->radius, 0.15f);
}

TEST(WindowManagerAnchors, FactoryZonesOnALandscapeAndAPortraitScreen) {
    const auto landscape = anchorGroups(factoryZones(), 1440, 900);
    ASSERT_EQ(landscape.size(), 7u);
    EXPECT_EQ(landscape[0].key, "0.5:0.0");
    EXPECT_EQ(names(landscape[0]), std::vector<QString>{"Custom"});
    EXPECT_EQ(names(*groupAt(landscape, {0, 0.5})), std::vector<QString>{"Left Half"});
    EXPECT_EQ(names(*groupAt(landscape, {1, 0.5})), std::vector<QString>{"Right Half"});
    EXPECT_EQ(names(*groupAt(landscape, {0, 0})), std::vector<QString>{"Top Left"});
    EXPECT_EQ(names(*groupAt(landscape, {1, 1})), std::vector<QString>{"Bottom Right"});

    const auto portrait = anchorGroups(factoryZones(), 1080, 1920);
    ASSERT_EQ(portrait.size(), 7u);
    EXPECT_EQ(names(*groupAt(portrait, {0, 0.5})), std::vector<QString>{"Custom"});
    EXPECT_EQ(names(*groupAt(portrait, {0.5, 0})), std::vector<QString>{"Top Half"});
    EXPECT_EQ(names(*groupAt(portrait, {0.5, 1})), std::vector<QString>{"Bottom Half"});
    EXPECT_FALSE(groupAt(portrait, {1, 0.5})); // the halves side by side are landscape zones
    EXPECT_EQ(hitName(portrait, {0.5, 0.03}), "Top Half");
    EXPECT_EQ(hitName(portrait, {0.05, 0.95}), "Bottom Left");
    EXPECT_EQ(hitName(portrait, {0.03, 0.6}), "Custom");
}

TEST(WindowManagerAnchors, SharedPointsRankByNearnessToTheCentreThenArea) {
    // The left third is listed first but its middle is further from the centre than the half's.
    const auto groups = anchorGroups(
        {zone("Left Third", "0", "0", "0.333", "1"), zone("Left Half", "0", "0", "1/2", "1")}, 1440, 900);
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_EQ(groups[0].key, "0.0:0.5");
    EXPECT_EQ(names(groups[0]), (std::vector<QString>{"Left Half", "Left Third"}));
    EXPECT_EQ(groups[0].anchors[0].radius, 0.15f);
    EXPECT_FLOAT_EQ(groups[0].anchors[1].radius, 0.075f);

    // Same middle: the smaller one first. Three anchors shrink by a third each.
    const auto three =
        anchorGroups({zone("Tall", "0", "0", "1/2", "1"), zone("Short", "0", "1/4", "1/2", "1/2"),
                      zone("Thin", "0", "0", "1/10", "1")},
                     1440, 900);
    ASSERT_EQ(three.size(), 1u);
    EXPECT_EQ(names(three[0]), (std::vector<QString>{"Short", "Tall", "Thin"}));
    EXPECT_FLOAT_EQ(three[0].anchors[1].radius, 0.1f);
    EXPECT_FLOAT_EQ(three[0].anchors[2].radius, 0.05f);
}

TEST(WindowManagerAnchors, HitTestPicksTheSmallestCapturingRadius) {
    const auto groups = anchorGroups(
        {zone("Left Half", "0", "0", "1/2", "1"), zone("Left Third", "0", "0", "0.333", "1")}, 1440, 900);
    EXPECT_EQ(hitName(groups, {0.5, 0.5}), "none");
    EXPECT_EQ(hitName(groups, {0.02, 0.5}), "Left Third"); // both capture
    EXPECT_EQ(hitName(groups, {0.1, 0.5}), "Left Half");   // only the half reaches this far
    // The edge middle measures from the edge line, so the strip is reachable all along the edge.
    EXPECT_EQ(hitName(groups, {0.02, 0.95}), "Left Third");
    EXPECT_EQ(hitName(groups, {0.1, 0.05}), "Left Half");
    // Beyond every radius, the group's first anchor while the point is within 0.4, then nothing.
    EXPECT_EQ(hitName(groups, {0.16, 0.86}), "Left Half");
    EXPECT_EQ(hitName(groups, {0.2, 0.9}), "none");
    // The central rectangle is closed on its near edges and open on its far ones.
    EXPECT_EQ(hitName(groups, {0.15, 0.5}), "none");
    EXPECT_EQ(hitName(groups, {0.1499, 0.5}), "Left Half");
    EXPECT_EQ(hitName(groups, {0.849, 0.5}), "none");
    EXPECT_EQ(hitName(groups, {0.85, 0.14}), "none"); // the only group, but far from its point
    EXPECT_EQ(hitName({}, {0.02, 0.5}), "none");
    EXPECT_EQ(hitName(groups, {std::nan(""), 0.5}), "none");
}

TEST(WindowManagerAnchors, HitTestOverTheFactoryZones) {
    const auto groups = anchorGroups(factoryZones(), 1440, 900);
    EXPECT_EQ(hitName(groups, {0.03, 0.04}), "Top Left");
    EXPECT_EQ(hitName(groups, {0.97, 0.96}), "Bottom Right");
    EXPECT_EQ(hitName(groups, {0.5, 0.01}), "Custom");
    EXPECT_EQ(hitName(groups, {0.05, 0.7}), "Left Half"); // nearer the left middle than the corner
    EXPECT_EQ(hitName(groups, {0.05, 0.8}), "Bottom Left");
    EXPECT_EQ(hitName(groups, {0.99, 0.4}), "Right Half");
    // A corner's radius is Euclidean: along the top edge away from the corner it no longer captures,
    // but the corner is still the nearest point within 0.4.
    EXPECT_EQ(hitName(groups, {0.2, 0.02}), "Top Left");

    const Rect U{0, 24, 1440, 876};
    const Point p = unitPoint({720, 24}, U);
    EXPECT_EQ(p, (Point{0.5, 0}));
    const SnapTarget target = snapTargetFor(*hitTest(groups, p), U, 10);
    EXPECT_EQ(target.area.name, "Custom");
    EXPECT_NEAR(target.frame.x, 10, 1e-9);
    EXPECT_NEAR(target.frame.y, 34, 1e-9);
    EXPECT_NEAR(target.frame.width, 1420, 1e-9);
    EXPECT_NEAR(target.frame.height, 856, 1e-9);
}

TEST(WindowManagerAnchors, CacheIsKeyedBySizeAndRebuiltWhenTheZonesChange) {
    WindowManagerPreferences prefs;
    prefs.updated = 1000;
    AnchorsCache cache;
    const CachedAnchorGroups& first = cache.groups(1440, 875, prefs, 5000);
    EXPECT_EQ(first.created, 5000);
    EXPECT_EQ(first.anchorGroups.size(), 7u);
    const Anchor* hit = hitTest(first.anchorGroups, {0.02, 0.02});

    // Unchanged: the same entry, anchors and all.
    const CachedAnchorGroups& again = cache.groups(1440, 875, prefs, 9000);
    EXPECT_EQ(&again, &first);
    EXPECT_EQ(again.created, 5000);
    EXPECT_EQ(hitTest(again.anchorGroups, {0.02, 0.02}), hit);
    // Reused even when the stamp is ahead of the entry's time.
    prefs.updated = 6000;
    cache.groups(1440, 875, prefs, 5500);
    EXPECT_EQ(cache.groups(1440, 875, prefs, 5600).created, 5500);

    // Another size has its own entry.
    EXPECT_EQ(cache.groups(1080, 1920, prefs, 9000).anchorGroups.size(), 7u);
    EXPECT_EQ(cache.size(), 2u);

    // A zone edit bumps the stamp, even to an earlier value: rebuilt on the next use.
    prefs.areas = {zone("Left", "0", "0", "1/2", "1")};
    prefs.updated = 10;
    const CachedAnchorGroups& rebuilt = cache.groups(1440, 875, prefs, 12000);
    EXPECT_EQ(rebuilt.created, 12000);
    ASSERT_EQ(rebuilt.anchorGroups.size(), 1u);
    EXPECT_EQ(rebuilt.anchorGroups[0].anchors[0].area.name, "Left");
    EXPECT_EQ(cache.size(), 2u);

    // A screen of no size has nothing and leaves the cache alone.
    EXPECT_TRUE(cache.groups(0, 875, prefs, 1).anchorGroups.empty());
    EXPECT_TRUE(cache.groups(1440, std::nan(""), prefs, 1).anchorGroups.empty());
    EXPECT_EQ(cache.size(), 2u);
}

TEST(WindowManagerAnchors, KeysWriteNumbersWithADecimal) {
    EXPECT_EQ(pairKey(1440, 875), "1440.0:875.0");
    EXPECT_EQ(pairKey(0, 0.5), "0.0:0.5");
    EXPECT_EQ(decimalText(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(decimalText(2560.5), "2560.5");
    EXPECT_EQ(decimalText(1000000), "1000000.0");
    EXPECT_EQ(decimalText(0.00001), "1e-05");
    EXPECT_EQ(decimalText(-2), "-2.0");
}
