#include "dimming/MonitorDimmingModel.h"

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <limits>

using namespace velmora;

TEST(MonitorDimmingModel, ToggleRemembersTheFactorAndRestoresIt) {
    MonitorDimmingModel model;
    ASSERT_TRUE(model.setBrightnessFactor(0.6));
    model.toggle();
    EXPECT_EQ(model.brightnessFactor(), 1.0);
    EXPECT_EQ(model.previousBrightnessFactor(), 0.6);
    model.toggle();
    EXPECT_EQ(model.brightnessFactor(), 0.6);

    // A factor set while dimming is off is what the next toggle remembers, not the older one.
    model.toggle();
    ASSERT_TRUE(model.setBrightnessFactor(0.35));
    model.toggle();
    EXPECT_EQ(model.brightnessFactor(), 1.0);
    EXPECT_EQ(model.previousBrightnessFactor(), 0.35);
}

TEST(MonitorDimmingModel, FirstToggleDimsToTheInitialPreviousFactor) {
    MonitorDimmingModel model;
    EXPECT_EQ(model.brightnessFactor(), 1.0);
    model.toggle();
    EXPECT_EQ(model.brightnessFactor(), MonitorDimmingModel::kInitialPreviousBrightnessFactor);
    EXPECT_EQ(model.brightnessFactor(), 0.6);
}

TEST(MonitorDimmingModel, FactorsOutsideTheRangeAreRefusedAndChangeNothing) {
    MonitorDimmingModel model;
    ASSERT_TRUE(model.setBrightnessFactor(0.5));
    QSignalSpy changed(&model, &MonitorDimmingModel::brightnessFactorChanged);
    for (double bad : {0.0, 0.09, 1.01, -0.5, std::numeric_limits<double>::quiet_NaN(),
                       std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(model.setBrightnessFactor(bad)) << bad;
    EXPECT_EQ(model.brightnessFactor(), 0.5);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_TRUE(model.setBrightnessFactor(0.1));
    EXPECT_TRUE(model.setBrightnessFactor(1.0));
    EXPECT_TRUE(model.setBrightnessFactor(1.0)); // the same again: accepted, not announced twice
    EXPECT_EQ(changed.count(), 2);
}

TEST(MonitorDimmingModel, OverlayOpacityIsOneMinusTheClampedFactor) {
    EXPECT_DOUBLE_EQ(MonitorDimmingModel::overlayOpacity(1.0), 0.0);
    EXPECT_DOUBLE_EQ(MonitorDimmingModel::overlayOpacity(0.5), 0.5);
    EXPECT_DOUBLE_EQ(MonitorDimmingModel::overlayOpacity(0.25), 0.75);
    // Never darker than the lowest factor, never brighter than the screen itself.
    EXPECT_DOUBLE_EQ(MonitorDimmingModel::overlayOpacity(0.0), 0.9);
    EXPECT_DOUBLE_EQ(MonitorDimmingModel::overlayOpacity(1.5), 0.0);
    EXPECT_DOUBLE_EQ(MonitorDimmingModel::overlayOpacity(std::numeric_limits<double>::quiet_NaN()), 0.0);
}
