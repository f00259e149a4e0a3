#include "dimming/DimmedScreens.h"

#include <gtest/gtest.h>
#include <limits>

using namespace velmora;

TEST(DimmedScreens, WideAndPortraitMonitorsQualifyLaptopShapesDoNot) {
    EXPECT_TRUE(qualifiesForDimming({0, 0, 1920, 1080}));  // 1.777…: exactly 16:9
    EXPECT_TRUE(qualifiesForDimming({0, 0, 1080, 1920}));  // 0.5625
    EXPECT_TRUE(qualifiesForDimming({0, 0, 3440, 1440}));  // ultra-wide
    EXPECT_FALSE(qualifiesForDimming({0, 0, 1728, 1117})); // about 1.547
    EXPECT_FALSE(qualifiesForDimming({0, 0, 1920, 1200})); // 16:10
    EXPECT_FALSE(qualifiesForDimming({0, 0, 1000, 1000})); // square: 1.0 is not below 1.0
    EXPECT_TRUE(qualifiesForDimming({0, 0, 999, 1000}));
    // Just under 16:9 does not qualify: the rule is ratio >= 16/9, not a rounded ratio.
    EXPECT_FALSE(qualifiesForDimming({0, 0, 1919, 1080}));
    EXPECT_FALSE(qualifiesForDimming({0, 0, 1920, 0}));
}

TEST(DimmedScreens, KeyIsTheFrameAsDecimalTextOfDoubles) {
    EXPECT_EQ(dimmingScreenKey({0, 0, 2560, 1440}), "0.0:0.0:2560.0:1440.0");
    EXPECT_EQ(dimmingScreenKey({-1920, 360.5, 1920, 1080}), "-1920.0:360.5:1920.0:1080.0");
    EXPECT_EQ(decimalText(0.1), "0.1"); // the shortest text that reads back the same
    EXPECT_EQ(decimalText(-0.0), "-0.0");
    // A moved screen has another key.
    EXPECT_NE(dimmingScreenKey({1440, 0, 1920, 1080}), dimmingScreenKey({1920, 0, 1920, 1080}));
}

TEST(DimmedScreens, FramesNoWindowCanCoverHaveAReason) {
    EXPECT_FALSE(unusableFrameReason({0, 0, 1920, 1080}));
    EXPECT_FALSE(unusableFrameReason({-1920, 0, 1920, 1080}));
    EXPECT_TRUE(unusableFrameReason({0, 0, 0, 0}));
    EXPECT_TRUE(unusableFrameReason({0, 0, 1920, 0.5}));
    EXPECT_TRUE(unusableFrameReason({0, 0, 40000, 1080}));
    EXPECT_TRUE(unusableFrameReason({0, 0, std::numeric_limits<double>::quiet_NaN(), 1080}));
}
