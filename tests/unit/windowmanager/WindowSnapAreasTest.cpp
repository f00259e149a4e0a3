#include "windowmanager/WindowSnapAreas.h"
#include "core/DefaultValues.h"
#include "windowmanager/WindowPlacement.h"

#include <gtest/gtest.h>

using namespace velmora;

TEST(WindowSnapAreas, ScreenKindsUseTheExactThresholds) {
    EXPECT_EQ(screenKind(1080, 1920), ScreenKind::vertical);
    EXPECT_EQ(screenKind(1000, 1000), ScreenKind::laptop);
    EXPECT_EQ(screenKind(1440, 900), ScreenKind::laptop);
    EXPECT_EQ(screenKind(1920, 1080), ScreenKind::wide); // exactly 16:9 is wide, not laptop-class
    EXPECT_EQ(screenKind(2560, 1080), ScreenKind::ultrawide);
    EXPECT_EQ(screenKind(3840, 1080), ScreenKind::superUltrawide);
    EXPECT_EQ(screenKind(21, 9), ScreenKind::ultrawide);
}

TEST(WindowSnapAreas, SharedChordOffersOnlyTheZonesOfTheScreenKind) {
    const auto zones = zonesForChord(factoryZones(), chord(Modifier::Control | Modifier::Alt, 126));
    ASSERT_EQ(zones.size(), 2u); // "Custom" and "Top Half"
    const auto landscape = chooseZone(zones, {0, 0, 1440, 900}, std::nullopt);
    ASSERT_TRUE(landscape);
    EXPECT_EQ(landscape->candidates.size(), 1u);
    const auto portrait = chooseZone(zones, {0, 0, 1080, 1920}, std::nullopt);
    ASSERT_TRUE(portrait);
    EXPECT_EQ(portrait->candidates.size(), 2u);
    // Bottom Half is portrait-only: nothing is offered on a landscape screen.
    EXPECT_FALSE(chooseZone(zonesForChord(factoryZones(), chord(Modifier::Control | Modifier::Alt, 125)),
                            {0, 0, 1440, 900}, std::nullopt));
    EXPECT_FALSE(chooseZone(zones, {0, 0, 0, 0}, std::nullopt)); // a screen of no size
}

TEST(WindowSnapAreas, CycleUsesTheRawZoneWithinOneHundredth) {
    const Rect U{0, 0, 1000, 1000};
    const std::vector<UnitRect> two{{0, 0, 0.5, 1}, {0, 0, 0.667, 1}};
    EXPECT_EQ(cycleIndex(two, U, Rect{0, 0, 500, 1000}), 1);
    EXPECT_EQ(cycleIndex(two, U, Rect{9, 0, 500, 1000}), 1);
    EXPECT_EQ(cycleIndex(two, U, Rect{10, 0, 500, 1000}), 0); // 0.01 off is no longer in the zone
    EXPECT_EQ(cycleIndex(two, U, Rect{0, 0, 667, 1000}), 0);  // wraps
    EXPECT_EQ(cycleIndex(two, U, std::nullopt), 0);
}

TEST(WindowSnapAreas, AWindowPlacedInAZoneIsRecognisedThereOnEveryScreenShape) {
    // The factory "Custom" and "Top Half" share a chord. On a 900-point-wide portrait screen the whole
    // zone is placed at x 7 (7.65 truncated) with width 884: 9 points short of the right edge, exactly
    // 0.01 of the width, so the raw rectangle alone would never see the window there.
    const std::vector<UnitRect> upZones{{0, 0, 1, 1}, {0, 0, 1, 0.5}};
    for (const Rect U : {Rect{0, 24, 900, 1416}, Rect{0, 0, 1440, 876}, Rect{0, 0, 768, 1366}}) {
        const double g = snapGap(U, 0.5);
        for (std::size_t i = 0; i < upZones.size(); ++i) {
            const Rect placed = placementTarget(zoneFrame(upZones[i], U, g), U);
            EXPECT_EQ(cycleIndex(upZones, U, placed, g), int((i + 1) % upZones.size()))
                << U.width << "x" << U.height << " zone " << i;
        }
    }
    // A window only near the zone still is not in it.
    EXPECT_EQ(cycleIndex(upZones, {0, 0, 900, 1416}, Rect{30, 30, 800, 1300}, 7.65), 0);
}

TEST(WindowSnapAreas, ZoneFramesHaveFullGapsAtEdgesAndHalfGapsBetween) {
    const Rect U{0, 0, 1440, 900};
    const double g = snapGap(U, 1);
    EXPECT_DOUBLE_EQ(g, 15.3);
    const Rect left = zoneFrame({0, 0, 0.5, 1}, U, g);
    EXPECT_DOUBLE_EQ(left.x, 15.3);
    EXPECT_DOUBLE_EQ(left.width, 697.05);
    const Rect right = zoneFrame({0.5, 0, 0.5, 1}, U, g);
    EXPECT_NEAR(right.x - left.maxX(), g, 1e-9); // two zones that meet are one gap apart
    EXPECT_NEAR(U.maxX() - right.maxX(), g, 1e-9);
}

TEST(WindowSnapAreas, UnparsableZonesAreSkippedAndSizesAboveOneArePoints) {
    auto zones = zonesForChord(factoryZones(), chord(Modifier::Control | Modifier::Alt, 123));
    ASSERT_EQ(zones.size(), 1u);
    zones.push_back(zones[0]);
    zones[0].w = "half";
    const auto choice = chooseZone(zones, {0, 0, 1440, 900}, std::nullopt);
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->candidates.size(), 1u);

    WindowArea fixed = zones[1];
    fixed.w = "800";
    fixed.h = "600";
    const auto rect = zoneRect(fixed);
    ASSERT_TRUE(rect);
    EXPECT_EQ(zoneFrame(*rect, {0, 0, 1440, 900}, 7.65), (Rect{320, 150, 800, 600}));
}
