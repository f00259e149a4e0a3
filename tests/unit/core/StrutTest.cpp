#include "core/Strut.h"
#include "core/ScreenInfo.h"

#include <gtest/gtest.h>

using namespace velmora;

// Two monitors side by side: 1440 x 900 on the left, 1920 x 1080 on the right (desktop 3360 x 1080).
namespace {
const Rect left{0, 0, 1440, 900};
const Rect right{1440, 0, 1920, 1080};
constexpr double W = 3360, H = 1080;
} // namespace

TEST(Strut, ReservesOnlyOnTheMonitorItsBandCrosses) {
    Strut topOfLeft;
    topOfLeft.top = 24;
    topOfLeft.topStartX = 0;
    topOfLeft.topEndX = 1439;
    EXPECT_EQ(visibleArea(left, {topOfLeft}, W, H), (Rect{0, 24, 1440, 876}));
    EXPECT_EQ(visibleArea(right, {topOfLeft}, W, H), right);
}

TEST(Strut, EdgesAreMeasuredFromTheWholeDesktop) {
    // A dock along the bottom of the taller right monitor: 1080 - 48 from the desktop's bottom edge.
    Strut bottom;
    bottom.bottom = 48;
    bottom.bottomStartX = 1440;
    bottom.bottomEndX = 3359;
    EXPECT_EQ(visibleArea(right, {bottom}, W, H), (Rect{1440, 0, 1920, 1032}));
    EXPECT_EQ(visibleArea(left, {bottom}, W, H), left);

    Strut rightEdge;
    rightEdge.right = 60;
    rightEdge.rightStartY = 0;
    rightEdge.rightEndY = 1079;
    EXPECT_EQ(visibleArea(right, {rightEdge}, W, H), (Rect{1440, 0, 1860, 1080}));
    EXPECT_EQ(visibleArea(left, {rightEdge}, W, H), left);
}

TEST(Strut, SeveralStrutsCombineAndABrokenOneIsIgnored) {
    Strut top, leftDock;
    top.top = 24;
    top.topEndX = 3359;
    leftDock.left = 64;
    leftDock.leftEndY = 1079;
    EXPECT_EQ(visibleArea(left, {top, leftDock}, W, H), (Rect{64, 24, 1376, 876}));

    Strut huge;
    huge.top = 5000;
    huge.topEndX = 3359;
    EXPECT_EQ(visibleArea(left, {huge}, W, H), left);
}

TEST(ScreenInfo, PrimaryIsTheScreenAtTheOriginAndPointsFindTheirScreen) {
    const std::vector<ScreenInfo> screens{{"right", {1440, -180, 1920, 1080}, {}, 1},
                                          {"left", {0, 0, 1440, 900}, {}, 1}};
    EXPECT_EQ(primaryScreen(screens)->id, "left");
    EXPECT_EQ(screenAt(screens, {1440, 0})->id, "right");
    EXPECT_EQ(screenAt(screens, {1439.5, 0})->id, "left");
    EXPECT_FALSE(screenAt(screens, {100, 950}));
    // The two spaces convert into each other with the primary screen's height.
    const Rect windowFrame{100, 24, 600, 400};
    EXPECT_EQ(windowFrame.flipped(900), (Rect{100, 476, 600, 400}));
    EXPECT_EQ(windowFrame.flipped(900).flipped(900), windowFrame);
}
