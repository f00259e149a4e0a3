// The free space beside a snapped window, with windows placed the way the zone shortcuts place them.
#include "windowmanager/AutoLayoutFreeSpace.h"
#include "windowmanager/WindowPlacement.h"
#include "windowmanager/WindowSnapAreas.h"

#include <gtest/gtest.h>

using namespace velmora;

namespace {

// A window as placing it in the zone leaves it: gaps, then whole points.
Rect placedIn(const UnitRect& zone, const Rect& U, double spacing = 0.5) {
    return placementTarget(zoneFrame(zone, U, snapGap(U, spacing)), U);
}

void expectRect(const std::optional<Rect>& actual, const Rect& expected) {
    ASSERT_TRUE(actual);
    EXPECT_NEAR(actual->x, expected.x, 1e-9);
    EXPECT_NEAR(actual->y, expected.y, 1e-9);
    EXPECT_NEAR(actual->width, expected.width, 1e-9);
    EXPECT_NEAR(actual->height, expected.height, 1e-9);
}

} // namespace

TEST(AutoLayoutFreeSpace, BesideAWindowOnTheLeftOrRight) {
    const Rect U{0, 0, 1920, 1080};
    const double g = 9.18; // 1080 x 0.5 x 0.017
    const Rect left = placedIn({0, 0, 0.5, 1}, U);
    expectRect(autoLayoutFreeSpace(left, U, 0.5),
               {left.maxX() + g, U.minY() + g, 1920 - left.width - 27.54, 1080 - 18.36});
    const Rect right = placedIn({0.5, 0, 0.5, 1}, U);
    expectRect(autoLayoutFreeSpace(right, U, 0.5), {g, g, 1920 - right.width - 3 * g, 1080 - 2 * g});
    // A left third leaves two thirds.
    const Rect third = placedIn({0, 0, 1.0 / 3, 1}, U);
    expectRect(autoLayoutFreeSpace(third, U, 0.5),
               {third.maxX() + g, g, 1920 - third.width - 3 * g, 1080 - 2 * g});
}

TEST(AutoLayoutFreeSpace, AboveOrBelowAWindowOnAnOffsetScreen) {
    // A portrait screen right of the primary one, below a 24-point panel.
    const Rect U{1920, 24, 1080, 1896};
    const double g = snapGap(U, 0.5);
    const Rect top = placedIn({0, 0, 1, 0.5}, U);
    expectRect(autoLayoutFreeSpace(top, U, 0.5),
               {U.minX() + g, top.maxY() + g, U.width - 2 * g, U.height - top.height - 3 * g});
    const Rect bottom = placedIn({0, 0.5, 1, 0.5}, U);
    expectRect(autoLayoutFreeSpace(bottom, U, 0.5),
               {U.minX() + g, U.minY() + g, U.width - 2 * g, U.height - bottom.height - 3 * g});
    const Rect side = placedIn({0.5, 0, 0.5, 1}, U);
    expectRect(autoLayoutFreeSpace(side, U, 0.5),
               {U.minX() + g, U.minY() + g, U.width - side.width - 3 * g, U.height - 2 * g});
}

TEST(AutoLayoutFreeSpace, NoneUnlessAgainstThreeSides) {
    const Rect U{0, 0, 1920, 1080};
    EXPECT_FALSE(autoLayoutFreeSpace(placedIn({0, 0, 1, 1}, U), U, 0.5));             // maximised
    EXPECT_FALSE(autoLayoutFreeSpace(placedIn({0, 0, 0.5, 0.5}, U), U, 0.5));         // a quarter
    EXPECT_FALSE(autoLayoutFreeSpace(placedIn({1.0 / 3, 0, 1.0 / 3, 1}, U), U, 0.5)); // a middle column
    EXPECT_FALSE(autoLayoutFreeSpace({300, 200, 800, 600}, U, 0.5));                  // floating
    EXPECT_FALSE(autoLayoutFreeSpace({0, 0, 0, 0}, U, 0.5));
    EXPECT_FALSE(autoLayoutFreeSpace({0, 0, 960, 1080}, {0, 0, 0, 0}, 0.5));
    // Edges count within 2 % of the window's longer side: a left half dragged 30 points in is loose.
    const Rect left = placedIn({0, 0, 0.5, 1}, U);
    EXPECT_TRUE(autoLayoutFreeSpace({left.x + 20, left.y, left.width, left.height}, U, 0.5));
    EXPECT_FALSE(autoLayoutFreeSpace({left.x + 30, left.y, left.width, left.height}, U, 0.5));
    // Without spacing the window lies against the screen itself.
    expectRect(autoLayoutFreeSpace({0, 0, 640, 1080}, U, 0), {640, 0, 1280, 1080});
}
